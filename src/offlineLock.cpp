#include "src/offlineLock.h"

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char OFFLINE_FILE[] = "/var/ksl/sc-offline.dat";

}  // namespace

bool IsLocked() {
    int const file = ::open(OFFLINE_FILE, O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // whatever stands there
    if (file < 0) {
        return false;
    }
    struct flock64 whole = {};
    whole.l_type = F_RDLCK;
    whole.l_whence = SEEK_SET;
    bool const isHeld = ::fcntl(file, F_SETLK64, &whole) < 0;
    if (!isHeld) {
        whole.l_type = F_UNLCK;
        ::fcntl(file, F_SETLK64, &whole);
    }
    ::close(file);
    return isHeld;
}
