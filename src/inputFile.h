#pragma once

#include <string>

/// Whether reading `path` could wait for somebody else: a pipe, a socket or a character device, which no
/// package holds. Such a file is refused before it is opened, as opening a pipe alone can take for ever. A
/// refusal is told in the verbose log.
bool refuseWaitingFile(std::string const& path);
