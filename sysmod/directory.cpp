#include "sysmod/directory.h"

#include <fnmatch.h>

#include "sysmod/system_calls.h"

namespace Core::SysMod {

std::vector<std::string> FMDirectory::GetChildren() const {
    std::vector<std::string> names;
    if (!systemCalls().listDirectory(m_path, names)) {
        names.clear();
    }
    return names;
}

std::vector<std::string> FMDirectory::GetChildren(std::string const& pattern) const {
    std::vector<std::string> names = GetChildren();
    std::erase_if(names, [&](std::string const& name) { return !matchesPattern(name, pattern); });
    return names;
}

std::string FMDirectory::firstLine(std::string const& name) const {
    std::string line;
    return systemCalls().readFirstLine(m_path + "/" + name, line) ? line : std::string();
}

bool matchesPattern(std::string const& text, std::string const& pattern) {
    return fnmatch(pattern.c_str(), text.c_str(), FNM_NOESCAPE) == 0;
}

std::string baseName(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace Core::SysMod
