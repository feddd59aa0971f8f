#include "simulator/array_controller.h"

#include <algorithm>
#include <cstdio>

#include "simulator/inquiry.h"

namespace simulator {

namespace {

constexpr std::uint8_t MANAGEMENT_IN = 0x26;
constexpr std::uint8_t MANAGEMENT_OUT = 0x27;  ///< also without data
constexpr std::uint8_t INQUIRY = 0x12;
constexpr std::uint8_t REPORT_LOGICAL = 0xC2;
constexpr std::uint8_t REPORT_PHYSICAL = 0xC3;
constexpr std::uint8_t MESSAGE_SCAN = 2;

bool isManagement(Command const& command) {
    return command.carrier == Carrier::PassThrough && !command.message && command.block.size() >= 7 &&
           (command.block[0] == MANAGEMENT_IN || command.block[0] == MANAGEMENT_OUT);
}

/// Logical drive number or page selector: low byte in byte 1, high byte in byte 9.
unsigned unitOf(Command const& command) {
    return command.block[1] | command.block[9] << 8;
}

/// Index of a physical device: low byte in byte 2, high byte in byte 9.
unsigned physicalIndexOf(Command const& command) {
    return command.block[2] | command.block[9] << 8;
}

std::string hexByte(unsigned value) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", value);
    return text;
}

char const* directionName(Direction direction) {
    switch (direction) {
        case Direction::None:
            return "none";
        case Direction::In:
            return "in";
        case Direction::Out:
            return "out";
        default:
            return "both";
    }
}

Reply answer(Bytes data) {
    Reply reply;
    reply.data = std::move(data);
    return reply;
}

/// What is out of protocol in the form of a management command; empty when nothing is.
std::string formProblem(ArrayController::Management const& row, Command const& command) {
    if (command.block.size() != 10)
        return "a command block of " + std::to_string(command.block.size()) + " bytes, expected 10";
    if (command.attribute != 4)
        return "task attribute " + std::to_string(command.attribute) + ", expected 4 (simple)";
    std::uint8_t const form = row.direction == Direction::In ? MANAGEMENT_IN : MANAGEMENT_OUT;
    if (command.block[0] != form)
        return std::string(row.name) + " arrived as " + hexByte(command.block[0]) + ", expected " +
               hexByte(form);
    // An empty transfer has no direction.
    bool const rightWay = command.direction == row.direction ||
                          (command.direction == Direction::None && command.bufferSize == 0);
    if (!rightWay)
        return std::string(row.name) + " arrived with direction " + directionName(command.direction) +
               ", expected " + directionName(row.direction);
    if (row.direction == Direction::None && command.bufferSize != 0)
        return std::string(row.name) + " arrived with " + std::to_string(command.bufferSize) +
               " bytes, expected none";
    if (std::uint64_t const length = getBig(&command.block[7], 2); length != (command.bufferSize & 0xFFFF))
        return "length field " + std::to_string(length) + ", the buffer has " +
               std::to_string(command.bufferSize);
    return {};
}

}  // namespace

ArrayController::ArrayController(DeviceFrame frame, Setup setup, ControllerFirmware firmware,
                                 ControllerRecords records, CollectBuffer collected, ControllerUnits units,
                                 ControllerParts parts, ControllerNvram nvram)
    : Device(std::move(frame)),
      m_setup(std::move(setup)),
      m_firmware(std::move(firmware)),
      m_records(std::move(records)),
      m_collected(std::move(collected)),
      m_units(std::move(units)),
      m_parts(std::move(parts)),
      m_nvram(std::move(nvram)) {}

std::string ArrayController::commandName(Command const& command) const {
    if (command.block.empty()) return "unknown";
    if (command.message)
        return command.block[0] == MESSAGE_SCAN ? "MESSAGE SCAN" : "MESSAGE " + hexByte(command.block[0]);
    if (isManagement(command)) {
        if (command.block[6] == ControllerNvram::CODE) return ControllerNvram::commandName(command);
        Management const* row = findManagement(command.block);
        return row != nullptr ? row->name : "BMIC " + hexByte(command.block[6]);
    }
    return scsiName(command.block[0]);
}

std::uint8_t ArrayController::opcode(Command const& command) const {
    return isManagement(command) ? command.block[6] : Device::opcode(command);
}

Reply ArrayController::execute(Command const& command) {
    bool const elsewhere =
        std::any_of(command.address.begin(), command.address.end(), [](auto byte) { return byte != 0; });
    if (elsewhere) {
        Reply reply;
        if (ScsiTarget* const target = targetOf(command)) {
            reply = target->execute(command);
            if (!m_paused && command.block[0] == 0x3B)
                reply.notes.push_back("WRITE BUFFER while background activity isn't paused");
            return reply;
        }
        reply.commandStatus = COMMAND_INVALID;
        reply.notes.push_back("no device at the address " + toHex(command.address));
        return reply;
    }
    if (command.message) {
        Reply reply;
        if (command.block[0] == MESSAGE_SCAN)
            scan(command.now);
        else
            reply.commandStatus = COMMAND_INVALID;
        return reply;
    }
    return isManagement(command) ? manage(command) : scsi(command);
}

ScsiTarget* ArrayController::targetOf(Command const& command) const {
    return command.message ? nullptr : m_units.find(command.address);
}

Reply ArrayController::manage(Command const& command) {
    if (command.block[6] == ControllerNvram::CODE) return m_nvram.execute(command);
    Management const* row = findManagement(command.block);
    if (row == nullptr || row->run == nullptr) return checkCondition(5, ASC_INVALID_OPERATION_CODE);
    std::string const problem = formProblem(*row, command);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    Reply reply = (this->*row->run)(command);
    reply.microseconds = row->microseconds;
    return reply;
}

Reply ArrayController::scsi(Command const& command) {
    switch (command.block[0]) {
        case 0x00:
            return {};
        case INQUIRY: {
            InquiryIdentity identity;
            identity.peripheralType = 0x0C;
            identity.vendor = "VQ";
            identity.product = m_setup.product;
            identity.revision = m_firmware.running();
            identity.serial = m_setup.serial;
            identity.worldWideName = m_setup.worldWideName;
            return inquiry(command, identity);
        }
        case REPORT_LOGICAL:
        case REPORT_PHYSICAL:
            return m_units.report(command);
        default:
            return checkCondition(5, ASC_INVALID_OPERATION_CODE);
    }
}

ControllerRecords::FirmwareVersions ArrayController::versions() const {
    return {m_firmware.running(), m_firmware.version(Rom::Active), m_firmware.version(Rom::Inactive)};
}

Reply ArrayController::identifyController(Command const&) {
    return answer(m_records.identifyController(versions(), &m_units));
}
Reply ArrayController::senseSubsystem(Command const&) {
    return answer(m_records.subsystem());
}
Reply ArrayController::senseParameters(Command const&) {
    return answer(m_records.controllerParameters());
}
Reply ArrayController::senseRedundantParameters(Command const&) {
    return answer(m_records.redundantParameters());
}
Reply ArrayController::senseSurfaceStatus(Command const&) {
    return answer(m_records.surfaceStatus());
}
Reply ArrayController::senseMnpStatus(Command const&) {
    return answer(m_records.mnpStatus());
}
Reply ArrayController::boardPower(Command const&) {
    return answer(m_records.boardPower());
}
Reply ArrayController::powerMode(Command const&) {
    return answer(m_records.powerMode());
}

Reply ArrayController::senseLogicalDriveConfiguration(Command const& command) {
    return answer(m_records.logicalDriveConfiguration(unitOf(command), false, &m_units));
}

Reply ArrayController::senseOriginalConfiguration(Command const& command) {
    return answer(m_records.logicalDriveConfiguration(unitOf(command), true, &m_units));
}

Reply ArrayController::senseLogicalDriveStatus(Command const& command) {
    return answer(m_records.logicalDriveStatus(unitOf(command)));
}

Reply ArrayController::identifyLogicalDrive(Command const& command) {
    return answer(m_records.identifyLogicalDrive(unitOf(command)));
}

Reply ArrayController::senseCacheConfiguration(Command const& command) {
    if (command.block[1] > 1) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    return answer(m_records.cacheConfiguration(command.block[1], m_parts.cacheVersion()));
}

Reply ArrayController::senseEncryption(Command const& command) {
    auto page = m_records.encryptionPage(static_cast<unsigned>(getBig(&command.block[2], 4)));
    return page ? answer(std::move(*page)) : checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
}

Reply ArrayController::senseDeferredUpdate(Command const& command) {
    unsigned const index = physicalIndexOf(command);
    if (!m_units.hasIndex(index)) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    // Contents are the drive firmware's own: here each byte is its place and the drive's index.
    Bytes page(156);
    for (std::size_t i = 0; i < page.size(); ++i)
        page[i] = static_cast<std::uint8_t>(i + index);
    return answer(std::move(page));
}

Reply ArrayController::senseBusParameters(Command const& command) {
    // Byte 2: the bus; byte 3: the box's target number on it.
    auto record = m_units.boxes().busParameters(command.block[2], command.block[3], m_units.limit());
    return record ? answer(std::move(*record)) : checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
}

Reply ArrayController::identifyPhysicalDevice(Command const& command) {
    // Below 128 are places on the buses of the oldest controllers, which have maps of 32 devices.
    unsigned const first = m_units.limit() > 32 ? 128 : 0;
    unsigned const place = physicalIndexOf(command);
    if (place < first) return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    auto record = m_units.identify(place - first, command.now);
    return record ? answer(std::move(*record)) : checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
}

Reply ArrayController::specialInquiry(Command const& command) {
    auto record = m_units.specialInquiry(physicalIndexOf(command), command.now);
    return record ? answer(std::move(*record)) : checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
}

void ArrayController::powerCycle(std::vector<std::string>& events) {
    restart(events);
}

void ArrayController::restart(std::vector<std::string>& events) {
    m_collected.drop();
    m_paused = false;
    std::string const before = m_firmware.running();
    if (m_firmware.restart())
        events.push_back("firmware " + m_firmware.running() + " runs after a restart, before it " + before);
}

nlohmann::json ArrayController::saveState() const {
    nlohmann::json state = m_firmware.save();
    state["paused"] = m_paused;
    state["parts"] = m_parts.save();
    state["nvram"] = m_nvram.save();
    return state;
}

void ArrayController::loadState(nlohmann::json const& state) {
    m_firmware.load(state);
    m_paused = state.at("paused").get<bool>();
    m_parts.load(state.at("parts"));
    m_nvram.load(state.at("nvram"));
}

void ArrayController::summarise(DeviceSummary& row) {
    row.product = m_setup.model;
    row.running = m_firmware.running();
    row.stored = m_firmware.version(Rom::Active);
    row.inactive = m_firmware.version(Rom::Inactive);
    row.nvram = m_nvram.contents();
    std::vector<std::string> words;
    if (m_firmware.restartNeeded()) words.push_back("restart needed");
    if (m_paused) words.push_back("paused");
    for (std::string const& word : words)
        row.state += (row.state.empty() ? "" : ", ") + word;
}

}  // namespace simulator
