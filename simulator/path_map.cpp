#include "simulator/path_map.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

namespace simulator {

namespace {

enum class Match {
    Tree,    ///< the prefix itself and all below it
    Any,     ///< whatever begins so
    Number,  ///< the prefix, decimal digits and nothing else
};

struct Prefix {
    std::string_view text;
    Match match;
    bool node;
    bool logs;
};

constexpr Prefix PREFIXES[] = {
    {"/sys/bus/pci", Match::Tree, false, false},
    {"/sys/devices/pci", Match::Any, false, false},  // where the bus's links lead
    {"/sys/block", Match::Tree, false, false},
    {"/sys/firmware/efi/efivars", Match::Tree, false, false},
    {"/etc/mtab", Match::Tree, false, false},
    {"/etc/fstab", Match::Tree, false, false},
    {"/dev/xqrth", Match::Tree, true, false},
    {"/dev/sg", Match::Number, true, false},
    {"/dev/mpt2ctl", Match::Tree, true, false},
    {"/var/ksl", Match::Tree, false, true},
};

bool matches(Prefix const& prefix, std::string_view path) {
    if (!path.starts_with(prefix.text)) return false;
    std::string_view const rest = path.substr(prefix.text.size());
    switch (prefix.match) {
        case Match::Tree:
            return rest.empty() || rest[0] == '/';
        case Match::Any:
            return true;
        default:
            return !rest.empty() &&
                   std::all_of(rest.begin(), rest.end(), [](unsigned char c) { return std::isdigit(c); });
    }
}

/// Resolves by name alone. A link before ".." would lead elsewhere on a disk, but no link of the machine's
/// tree leaves it, and a path that names the tree is what counts here.
std::string resolved(std::string const& path) {
    std::vector<std::string_view> parts;
    std::string_view rest = path;
    while (!rest.empty()) {
        std::size_t const end = std::min(rest.find('/'), rest.size());
        std::string_view const part = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (part.empty() || part == ".") continue;
        if (part != "..")
            parts.push_back(part);
        else if (!parts.empty())
            parts.pop_back();
    }
    std::string text;
    for (std::string_view const part : parts)
        text.append("/").append(part);
    return text;
}

}  // namespace

std::optional<std::string> machinePath(std::string const& path, bool logs) {
    if (path.empty() || path[0] != '/') return std::nullopt;
    std::string const plain = resolved(path);
    for (Prefix const& prefix : PREFIXES)
        if ((logs || !prefix.logs) && matches(prefix, plain)) return plain;
    return std::nullopt;
}

bool isNodePath(std::string const& path) {
    return std::any_of(std::begin(PREFIXES), std::end(PREFIXES),
                       [&](Prefix const& prefix) {
                           return prefix.node && path != prefix.text && matches(prefix, path);
                       }) ||
           path == "/dev/mpt2ctl";
}

}  // namespace simulator
