#include "src/flashTime.h"

#include "src/runState.h"

namespace {

constexpr unsigned MINUTE = 60;
constexpr unsigned HOUR = 3600;

std::string inWords(unsigned long long count, char const* unit) {
    return count == 1 ? std::string("1 ") + unit : std::to_string(count) + " " + unit + "s";
}

}  // namespace

std::string getFlashTime() {
    unsigned long long const time = gblEstimatedFlashTime;
    if (time >= HOUR) {
        return inWords((time + HOUR / 2 - 1) / HOUR, "hour");
    }
    if (time >= MINUTE) {
        return inWords((time + MINUTE / 2 - 1) / MINUTE, "minute");
    }
    return inWords(time, "second");
}
