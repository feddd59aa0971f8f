/// Interposed: requests to nodes. close(2) is not: a node is known by its file, not by a list of descriptors.

#include <sys/ioctl.h>

#include <cerrno>
#include <cstdarg>

#include "simulator/preload/door.h"
#include "simulator/preload/real.h"

extern "C" {

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    using namespace simulator::preload;
    if (bypassed() || !mayBeNode(descriptor) || !isNode(descriptor))
        return KSL_REAL(ioctl)(descriptor, request, argument);
    int const error = nodeIoctl(descriptor, request, argument);
    if (error == 0) return 0;
    errno = error;
    return -1;
}

}  // extern "C"
