#include "simulator/csmi_adapter.h"

#include <algorithm>
#include <cstdio>

#include "simulator/csmi_records.h"

namespace simulator {

namespace {

// Offsets from the end of the header; csmi_records.h counts from the record's beginning.
constexpr std::size_t HEADER = 20;
constexpr std::size_t PHYS = 32;

Reply answer(Bytes data) {
    Reply reply;
    reply.data = std::move(data);
    return reply;
}

Reply nobodyAt(Command const& command) {
    Reply reply;
    reply.commandStatus = COMMAND_INVALID;
    reply.notes.push_back("no such device at the address " + toHex(command.address));
    return reply;
}

void putVersion(Bytes& body, std::size_t offset, std::array<std::uint16_t, 4> const& version) {
    for (std::size_t i = 0; i < version.size(); ++i)
        putLittle(&body[offset - HEADER + 2 * i], 2, version[i]);
}

void putName(Bytes& body, std::size_t offset, std::string const& text) {
    std::copy(text.begin(), text.end(), body.begin() + static_cast<std::ptrdiff_t>(offset - HEADER));
}

std::array<std::uint16_t, 4> readVersion(Object const& object, char const* key,
                                         std::array<std::uint16_t, 4> version) {
    auto const value = object.find(key);
    if (!value) return version;
    std::vector<Value> const parts = value->list();
    if (parts.size() != version.size()) value->refuse("four numbers");
    for (std::size_t i = 0; i < version.size(); ++i)
        version[i] = static_cast<std::uint16_t>(parts[i].number(0xFFFF));
    return version;
}

}  // namespace

std::string CsmiAdapter::commandName(Command const& command) const {
    return command.csmi == CSMI_SMP ? smpName(command.block) : scsiName(command.block[0]);
}

Bytes CsmiAdapter::driverInformation() const {
    Bytes body(196 - HEADER);
    putName(body, 20, frame().pci.driver);
    putName(body, 101, "virtual SAS driver");
    putVersion(body, 182, m_setup.driver);
    return body;
}

Bytes CsmiAdapter::configuration() const {
    PciFunction const& pci = frame().pci;
    Bytes body(200 - HEADER);
    putLittle(&body[32 - HEADER], 4, std::uint32_t{pci.subsystemDevice} << 16 | pci.subsystemVendor);
    putLittle(&body[36 - HEADER], 2, m_setup.slot);
    unsigned bus = 0;
    unsigned device = 0;
    unsigned function = 0;
    std::sscanf(pci.address.c_str(), "%*x:%x:%x.%x", &bus, &device, &function);
    body[40 - HEADER] = static_cast<std::uint8_t>(bus);
    body[41 - HEADER] = static_cast<std::uint8_t>(device);
    body[42 - HEADER] = static_cast<std::uint8_t>(function);
    putName(body, 72, m_setup.serial);
    putVersion(body, 154, m_setup.firmware);
    putVersion(body, 162, m_setup.rom);
    return body;
}

Bytes CsmiAdapter::phyInformation(std::uint64_t now) const {
    Bytes body(2072 - HEADER);
    body[0] = m_setup.phyCount;
    for (std::size_t i = 0; i < std::min(m_setup.phys.size(), PHYS); ++i) {
        std::uint8_t* const entry = &body[24 - HEADER + 64 * i];
        entry[0] = 0x10;
        std::copy(m_setup.address.begin(), m_setup.address.end(), entry + 12);
        entry[20] = static_cast<std::uint8_t>(i);
        if (!m_setup.phys[i] || !m_setup.phys[i]->present(now)) continue;
        SasDevice const& attached = *m_setup.phys[i];
        entry[36] = static_cast<std::uint8_t>(attached.type << 4);
        entry[39] = attached.targetProtocols;
        std::copy(attached.address.begin(), attached.address.end(), entry + 48);
    }
    return body;
}

Reply CsmiAdapter::pause(Command const& command) {
    SasDevice const* const device = findSasDevice(m_setup.phys, command.address);
    if (device == nullptr || !device->target) return nobodyAt(command);
    std::string const address = toHex(command.address);
    Reply reply;
    if (command.csmi == CSMI_PAUSE)
        m_paused.insert(address);
    else if (m_paused.erase(address) == 0)
        reply.notes.push_back("background activity of " + address + " wasn't paused");
    return reply;
}

Reply CsmiAdapter::execute(Command const& command) {
    switch (command.csmi) {
        case CSMI_DRIVER_INFO:
            return answer(driverInformation());
        case CSMI_CONFIGURATION:
            return answer(configuration());
        case CSMI_STATUS: {
            Bytes body(56 - HEADER);
            putLittle(body.data(), 4, m_setup.status);
            return answer(std::move(body));
        }
        case CSMI_PHYS:
            return answer(phyInformation(command.now));
        case CSMI_PAUSE:
        case CSMI_RESUME:
            return pause(command);
        default:
            break;
    }
    SasDevice* const device = findSasDevice(m_setup.phys, command.address);
    if (command.csmi == CSMI_SMP)
        return device != nullptr && device->type > 1 ? answer(answerSmp(*device, command.block, command.now))
                                                     : nobodyAt(command);
    return device != nullptr && device->target ? device->target->execute(command) : nobodyAt(command);
}

void CsmiAdapter::summarise(DeviceSummary& row) {
    std::string version;
    for (std::uint16_t const part : m_setup.firmware)
        version += (version.empty() ? "" : ".") + std::to_string(part);
    row.product = "SAS adapter";
    row.running = row.stored = version;
    if (!m_paused.empty()) row.state = "paused";
}

ScsiTarget* CsmiAdapter::targetOf(Command const& command) const {
    bool const carries = command.csmi == CSMI_SSP || command.csmi == 0;
    SasDevice const* const device = carries ? findSasDevice(m_setup.phys, command.address) : nullptr;
    return device != nullptr ? device->target.get() : nullptr;
}

std::unique_ptr<Device> makeCsmiAdapter(DeviceFrame frame, Object const& object,
                                        std::filesystem::path const& firmware) {
    CsmiAdapter::Setup setup;
    setup.serial = object.textOr("serial", "", 81);
    setup.slot = static_cast<std::uint16_t>(object.numberOr("csmi_slot", 0xFFFF, 0xFFFF));
    setup.status = static_cast<std::uint32_t>(object.numberOr("status", 1, 0xFFFFFFFF));
    setup.address = {0x51, 0xE5, 0xC0, 0, 0, 0, 0, static_cast<std::uint8_t>(frame.instance)};
    if (auto const address = object.find("sas_address")) setup.address = readAddressText(*address);
    setup.firmware = readVersion(object, "firmware_version", {1, 0, 0, 0});
    setup.rom = readVersion(object, "rom_version", {1, 0, 0, 0});
    setup.driver = readVersion(object, "driver_version", {1, 0, 0, 0});
    if (auto const phys = object.find("phys")) {
        TargetPlace place;
        place.firmware = firmware;
        place.device = frame.name;
        setup.phys = readPhys(*phys, place);
        joinTargets(sasTargets(setup.phys), object.where());
    }
    setup.phyCount = static_cast<std::uint8_t>(object.numberOr("phy_count", setup.phys.size(), 255));
    return std::make_unique<CsmiAdapter>(std::move(frame), std::move(setup));
}

}  // namespace simulator
