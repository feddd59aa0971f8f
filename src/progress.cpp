#include "src/progress.h"

#include <unistd.h>

#include <cstdio>

#include "flash/progress.h"
#include "src/CLI.h"

namespace {

std::string currentSubject;
bool isShown = false;

void show(unsigned int done, unsigned int total) {
    unsigned int const percent = total == 0 ? 100 : static_cast<unsigned int>(100ULL * done / total);
    std::fprintf(stderr, "\r%s: %3u%%", currentSubject.c_str(), percent);
    std::fflush(stderr);
    isShown = true;
}

}  // namespace

ProgressLine::ProgressLine(std::string const& subject) {
    if (cli.isSilent() || ::isatty(STDERR_FILENO) == 0) {
        return;
    }
    currentSubject = subject;
    Interface::FlashMod::SetProgressObserver(show);
}

ProgressLine::~ProgressLine() {
    Interface::FlashMod::SetProgressObserver(nullptr);
    if (isShown) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(currentSubject.size() + sizeof ": 100%" - 1), "");
        std::fflush(stderr);
        isShown = false;
    }
}
