#include "core/capability_finder.h"

#include "common/debug_logger.h"

namespace Core {

namespace Names = Interface::TOLKMod::Capability;

void CapabilityFinder::Add(Common::pair<Common::string, AttributeValue> const& attribute) {
    m_attributes.insert(attribute);
}

Common::shared_ptr<Capability> CapabilityFinder::find() const {
    CapabilityList matches;
    find(matches);
    return matches.empty() ? Common::shared_ptr<Capability>() : *matches.begin();
}

void CapabilityFinder::find(CapabilityList& out) const {
    if (!hasRoot()) return;
    for (Capability::ChildIterator child = m_root->beginChild(); child != m_root->endChild(); ++child) {
        if (isMatchFound(**child)) out.push_back(*child);
    }
}

void CapabilityFinder::findRecursive(CapabilityList& out) const {
    PathList dropped;
    findRecursive(out, dropped);
}

void CapabilityFinder::findRecursive(PathList& paths) const {
    CapabilityList dropped;
    findRecursive(dropped, paths);
}

void CapabilityFinder::findRecursive(CapabilityList& out, PathList& paths) const {
    if (hasRoot()) walk(*m_root, "ROOT", out, paths);
}

void CapabilityFinder::walk(Capability const& parent, Common::string const& path, CapabilityList& out,
                            PathList& paths) const {
    Common::string const className = parent.getValueFor(Names::ATTR_NAME_ATTRIBUTE_NAME);
    for (Capability::ChildIterator child = parent.beginChild(); child != parent.endChild(); ++child) {
        // An instance holds its value under the name that its class, the parent, sets.
        bool const isClass = (*child)->type() == Names::ATTR_NAME_CAPABILITY_CLASS;
        Common::string const step =
            (*child)->getValueFor(isClass ? Common::string(Names::ATTR_NAME_ATTRIBUTE_NAME) : className);
        Common::string const childPath = path + "|" + step;
        if (isMatchFound(**child)) {
            out.push_back(*child);
            paths.push_back(childPath);
        }
        walk(**child, childPath, out, paths);
    }
}

bool CapabilityFinder::isMatchFound(Capability const& capability) const {
    unsigned matches = 0;
    for (auto const& attribute : m_attributes) {
        if (capability.hasAttributeAndIs(attribute.first, attribute.second)) ++matches;
    }
    return matches == m_attributes.size();
}

bool CapabilityFinder::hasRoot() const {
    if (m_root) return true;
    Common::DebugLogger::LogCommand("Capability search refused: no capability to start from");
    return false;
}

}  // namespace Core
