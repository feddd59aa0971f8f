#include "storage/schema/mod_root.h"

#include <cstdio>

#include "core/tolkmod.h"
#include "storage/schema/identity.h"

namespace Schema {
namespace {

constexpr char LIBRARY_VERSION[] = "8.2.0";

Common::string nextIdentifier() {
    static unsigned instances = 0;
    char text[16];
    std::snprintf(text, sizeof text, "MR:%u", instances++);
    return text;
}

}  // namespace

ModRoot::ModRoot() : m_identifier(nextIdentifier()) {
    m_self = Common::shared_ptr<Core::Device>(this);
    publish(*this, Interface::TOLKMod::Device::ATTR_NAME_TYPE,
            Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT);
    publish(*this, Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID, m_identifier);
    publish(*this, Interface::TOLKMod::ModRoot::ATTR_NAME_TOLKMOD_VERSION, LIBRARY_VERSION);
}

ModRoot::ModRoot(ModRoot const& other)
    : CloneableInherit(other),
      DeviceOperationRegistry(other),
      LocalStaticAllocator(other),
      m_identifier(other.m_identifier) {}

bool ModRoot::operator==(Core::Device const& other) const {
    return isSameKindAndIdentity(*this, other);
}

Core::OperationReturn ModRoot::performImpl(Core::VisitorDevice& visitor) {
    return Core::DispatchVisit<VisitorModRoot>(visitor, *this);
}

}  // namespace Schema
