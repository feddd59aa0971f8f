#include "storage/operations/listed_devices.h"

#include <algorithm>

#include "command/concrete_devices.h"
#include "common/debug_logger.h"
#include "storage/operations/physical_device_iterator.h"

namespace Operations {

ListedDevices::ListedDevices(Common::shared_ptr<Core::Device> const& controller, unsigned char deviceType)
    : m_type(deviceType) {
    read(controller);
}

ListedDevices::ListedDevices(Common::shared_ptr<Core::Device> const& controller, unsigned char deviceType,
                             std::vector<unsigned short> const& expected)
    : ListedDevices(controller, deviceType) {
    if (!std::all_of(expected.begin(), expected.end(),
                     [this](unsigned short number) { return has(number); })) {
        read(controller);
    }
}

/// Adds to what is known: a second look that is worse than the first takes nothing away.
void ListedDevices::read(Common::shared_ptr<Core::Device> const& controller) {
    auto const* const adapter = dynamic_cast<ConcreteSCSIDevice const*>(controller.get());
    if (adapter == nullptr) return;
    PhysicalDeviceIterator const devices(*adapter);
    m_isUnread = m_isUnread && devices.size() == 0;
    for (auto handle = devices.begin(m_type); handle != devices.end(m_type); ++handle) {
        unsigned short const index = Core::SysMod::getDeviceIndex(*handle);
        if (index >= m_handles.size()) m_handles.resize(index + 1U);
        if (m_handles[index].empty()) m_handles[index] = *handle;
        if (m_handles[index] != *handle) m_ambiguous.push_back(index);
    }
    for (unsigned short const index : m_ambiguous)
        m_handles[index] = Common::string();
}

bool ListedDevices::has(unsigned short index) const {
    return (index < m_handles.size() && !m_handles[index].empty()) ||
           std::count(m_ambiguous.begin(), m_ambiguous.end(), index) != 0;
}

bool ListedDevices::mayHave(unsigned short index) const {
    if (m_isUnread || has(index)) return true;
    Common::DebugLogger::LogCommand(
        "Device %u of a box refused: the list of physical devices has none of that number and type %u",
        static_cast<unsigned>(index), static_cast<unsigned>(m_type));
    return false;
}

Common::string ListedDevices::handleOf(unsigned short index) const {
    if (index < m_handles.size() && !m_handles[index].empty()) return m_handles[index];
    bool const isAmbiguous = std::count(m_ambiguous.begin(), m_ambiguous.end(), index) != 0;
    Common::DebugLogger::LogCommand(
        "Device %u can't be addressed: the list of physical devices has %s of that number and type %u",
        static_cast<unsigned>(index), isAmbiguous ? "several devices" : "no device",
        static_cast<unsigned>(m_type));
    return Common::string();
}

}  // namespace Operations
