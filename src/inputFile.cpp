#include "src/inputFile.h"

#include <sys/stat.h>

#include "src/CLI.h"

bool refuseWaitingFile(std::string const& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 ||
        !(S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) || S_ISCHR(status.st_mode))) {
        return false;
    }
    cli.logVerbose("%s refused: a pipe, socket or character device found, a file expected\n", path.c_str());
    return true;
}
