#include "storage/schema/external_devices.h"

#include "storage/vocabulary/caching_manager.h"
#include "storage/vocabulary/device_types.h"
#include "storage/vocabulary/external_array_controller_names.h"

namespace Schema {

namespace Types = Interface::StorageMod;

ExternalArrayController::ExternalArrayController(Common::string const& wwid)
    : Node(Types::ExternalArrayController::ATTR_VALUE_TYPE_EXTERNAL_ARRAY_CONTROLLER), m_wwid(wwid) {
    publish(*this, Types::ExternalArrayController::ATTR_NAME_WWID, wwid);
}

PairedController::PairedController() : Node(Types::PairedController::ATTR_VALUE_TYPE_PAIRED_CONTROLLER) {
    static unsigned s_instances = 0;
    m_identifier = runningIdentifier("PC:", s_instances);
}

RemoteVolume::RemoteVolume() : Node(Types::RemoteVolume::ATTR_VALUE_TYPE_REMOTE_VOLUME) {
    static unsigned s_instances = 0;
    m_identifier = runningIdentifier("RV:", s_instances);
}

CachingManager::CachingManager(Common::string const& name, Common::string const& version)
    : Node(Types::CachingManager::ATTR_VALUE_TYPE_CACHING_MANAGER), m_name(name) {
    publish(*this, Types::CachingManager::ATTR_NAME_CACHING_MANAGER_NAME, name);
    publish(*this, Types::CachingManager::ATTR_NAME_CACHING_MANAGER_VERSION, version);
}

}  // namespace Schema
