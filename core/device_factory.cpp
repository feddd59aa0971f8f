#include "core/device_factory.h"

#include "common/debug_logger.h"

namespace Core {

namespace {

DeviceFactory::RootCreator s_rootCreator = nullptr;

Common::shared_ptr<Device>& theRoot() {
    static Common::shared_ptr<Device> root;
    return root;
}

}  // namespace

Common::shared_ptr<Device> DeviceFactory::pRoot() const {
    Common::shared_ptr<Device>& root = theRoot();
    if (root) return root;

    if (s_rootCreator == nullptr) {
        Common::DebugLogger::LogCommand("Root device refused: no creator was set");
        return root;
    }
    Common::shared_ptr<Device> created = s_rootCreator();
    if (!created) {
        Common::DebugLogger::LogCommand("Root device refused: the creator gave none");
        return root;
    }
    created->setDevicePtr(created);
    // Stored before Refresh(), which may ask for the root itself.
    root = created;
    root->Refresh();
    return root;
}

void DeviceFactory::SetRootCreator(RootCreator creator) {
    s_rootCreator = creator;
}

void DeviceFactory::ReleaseRoot(Common::shared_ptr<Device> root) {
    if (!root) return;
    root->Reset();
    root->setDevicePtr(Common::shared_ptr<Device>());
}

void DeviceFactory::ForgetRoot() {
    // Forgotten last: taking it apart may ask for the root, which must not be a new one.
    ReleaseRoot(theRoot());
    theRoot() = Common::shared_ptr<Device>();
}

}  // namespace Core
