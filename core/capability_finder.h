#pragma once

#include "common/list.h"
#include "common/map.h"
#include "common/shared_ptr.h"
#include "common/string.h"
#include "core/attribute_value.h"
#include "core/capability.h"

namespace Core {

// A query over a capability tree. The capability it starts from is never a match itself. Values are compared
// by text. A null root is logged and matches nothing.
class CapabilityFinder {
  public:
    typedef Common::list<Common::shared_ptr<Capability>> CapabilityList;
    typedef Common::list<Common::string> PathList;

    explicit CapabilityFinder(Common::shared_ptr<Capability> root) : m_root(root) {}

    // A second value for a name replaces the first.
    void Add(Common::pair<Common::string, AttributeValue> const& attribute);

    // Looks at the direct children only: the first match or null; all matches appended.
    Common::shared_ptr<Capability> find() const;
    void find(CapabilityList& out) const;

    // Looks at the whole tree below the root, parents before their children. A path is "ROOT" and, joined
    // with "|", a step for each node down to the match: a class's ATTR_NAME_ATTRIBUTE_NAME or an instance's
    // value.
    void findRecursive(CapabilityList& out) const;
    void findRecursive(PathList& paths) const;
    void findRecursive(CapabilityList& out, PathList& paths) const;

  private:
    bool isMatchFound(Capability const& capability) const;
    bool hasRoot() const;
    void walk(Capability const& parent, Common::string const& path, CapabilityList& out,
              PathList& paths) const;

    Common::shared_ptr<Capability> m_root;
    Common::map<Common::string, AttributeValue> m_attributes;
};

}  // namespace Core
