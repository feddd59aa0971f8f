#include "sysmod/open_device_node.h"

#include <fcntl.h>

#include <cerrno>

#include "common/conversion.h"
#include "common/debug_logger.h"
#include "sysmod/system_calls.h"

namespace Core::SysMod {

OpenDeviceNode::OpenDeviceNode(Common::string const (&table)[PROPERTY_COUNT], bool alternate) {
    openPath(table[NodePath], alternate ? O_NONBLOCK : O_RDWR);
}

OpenDeviceNode::OpenDeviceNode(Common::string const& path, bool alternate) {
    openPath(path, alternate ? O_RDONLY : O_RDWR);
}

OpenDeviceNode::~OpenDeviceNode() {
    if (m_descriptor >= 0) {
        systemCalls().close(m_descriptor);
    }
}

void OpenDeviceNode::openPath(Common::string const& path, int flags) {
    Common::string node = path;
    unsigned const colon = path.find(":");
    if (colon != Common::string::npos) {
        m_controllerNumber = Conversion::toNumber<int>(path.substr(colon + 1, path.size() - colon - 1));
        node = path.substr(0, colon);
    }
    m_descriptor = systemCalls().open(node.c_str(), flags);
    if (m_descriptor < 0) {
        m_openError = errno;
        Common::DebugLogger::LogCommand("Error opening node (%s). Code: 0x%08X", node.c_str(),
                                        static_cast<unsigned>(m_openError));
    }
}

}  // namespace Core::SysMod
