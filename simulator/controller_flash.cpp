/// The commands of an array controller that change something: the flash sequence, resets, the ROM switch. And
/// the table of all its management commands.

#include <algorithm>

#include "simulator/array_controller.h"

namespace simulator {

namespace {

constexpr std::uint64_t SHORT = 1000;  // microseconds
constexpr std::uint64_t CHUNK_TIME = 5000;
constexpr std::uint64_t FLASH_TIME = 20'000'000;
constexpr std::uint64_t RESET_TIME = 10'000'000;

constexpr std::uint64_t UPDATE_WITHOUT_DOWNTIME = 2;

/// The address field of the command block: bytes 2 to 5.
std::uint64_t addressField(Command const& command) {
    return getBig(&command.block[2], 4);
}

using Controller = ArrayController;
constexpr Controller::Management COMMANDS[] = {
    {0x10, "IDENTIFY LOGICAL DRIVE", Direction::In, SHORT, &Controller::identifyLogicalDrive},
    {0x11, "IDENTIFY CONTROLLER", Direction::In, SHORT, &Controller::identifyController},
    {0x12, "SENSE LOGICAL DRIVE STATUS", Direction::In, SHORT, &Controller::senseLogicalDriveStatus},
    {0x15, "IDENTIFY PHYSICAL DRIVE", Direction::In, SHORT, &Controller::identifyPhysicalDevice},
    {0x16, "SET MAINTENANCE", Direction::Out, SHORT, nullptr},
    {0x17, "SENSE MAINTENANCE", Direction::In, SHORT, nullptr},
    {0x1E, "SENSE ENCRYPTION STATUS", Direction::In, SHORT, &Controller::senseEncryption},
    {0x20, "READ LOGICAL DRIVE", Direction::In, SHORT, nullptr},
    {0x27, "SENSE DEFERRED UPDATE STATUS", Direction::In, SHORT, &Controller::senseDeferredUpdate},
    {0x30, "WRITE LOGICAL DRIVE", Direction::Out, SHORT, nullptr},
    {0x40, "SOFT RESET CONTROLLER", Direction::None, RESET_TIME, &Controller::softReset},
    {0x46, "NVRAM PASS THROUGH", Direction::In, SHORT, &Controller::readNvram},
    {0x46, "NVRAM PASS THROUGH", Direction::Out, SHORT, &Controller::writeNvram},
    {0x50, "SENSE LOGICAL DRIVE CONFIGURATION", Direction::In, SHORT,
     &Controller::senseLogicalDriveConfiguration},
    {0x51, "SET LOGICAL DRIVE CONFIGURATION", Direction::Out, SHORT, nullptr},
    {0x55, "SENSE ORIGINAL LOGICAL DRIVE CONFIGURATION", Direction::In, SHORT,
     &Controller::senseOriginalConfiguration},
    {0x59, "SENSE EXPANSION ABILITY", Direction::In, SHORT, nullptr},
    {0x5D, "MIRROR DRIVE PAIR INFO", Direction::In, SHORT, nullptr},
    {0x64, "SENSE CONTROLLER PARAMETERS", Direction::In, SHORT, &Controller::senseParameters},
    {0x65, "SENSE BUS PARAMETERS", Direction::In, SHORT, &Controller::senseBusParameters},
    {0x66, "SENSE SUBSYSTEM INFORMATION", Direction::In, SHORT, &Controller::senseSubsystem},
    {0x6C, "FLASH COMPONENT", Direction::Out, SHORT, &Controller::flashComponent},
    {0x70, "SENSE SURFACE STATUS", Direction::In, SHORT, &Controller::senseSurfaceStatus},
    {0x72, "SENSE MNP STATUS", Direction::In, SHORT, &Controller::senseMnpStatus},
    {0x73, "SENSE KEY RECORDS", Direction::In, SHORT, nullptr},
    {0x82, "SENSE REDUNDANT PARAMETERS", Direction::In, SHORT, &Controller::senseRedundantParameters},
    {0x92, "PASS THROUGH SPECIAL INQUIRY", Direction::In, SHORT, &Controller::specialInquiry},
    {0x98, "PAUSE BACKGROUND ACTIVITY", Direction::None, SHORT, &Controller::pause},
    {0x99, "RESUME BACKGROUND ACTIVITY", Direction::None, SHORT, &Controller::resume},
    {0xA0, "SENSE MNP STATISTICS", Direction::In, SHORT, &Controller::senseMnpStatistics},
    {0xC0, "SET CACHE CONFIGURATION", Direction::Out, SHORT, nullptr},
    {0xC1, "SENSE CACHE CONFIGURATION", Direction::In, SHORT, &Controller::senseCacheConfiguration},
    {0xD2, "COLLECT BUFFER", Direction::Out, CHUNK_TIME, &Controller::collect},
    {0xD3, "FREE COLLECTED BUFFER", Direction::None, SHORT, &Controller::freeCollected},
    {0xE5, "SENSE DRIVE ERASE PROGRESS", Direction::In, SHORT, &Controller::senseEraseProgress},
    {0xED, "GET TOTAL BOARD POWER", Direction::In, SHORT, &Controller::boardPower},
    {0xEE, "GET POWER MODE", Direction::In, SHORT, &Controller::powerMode},
    {0xF7, "FLASH CONTROLLER FIRMWARE", Direction::None, FLASH_TIME, &Controller::flash},
    {0xFC, "TOGGLE ACTIVE ROM", Direction::None, SHORT, &Controller::toggleRom},
};

}  // namespace

ArrayController::Management const* ArrayController::findManagement(Bytes const& block) {
    Management const* found = nullptr;
    for (Management const& row : COMMANDS) {
        if (row.code != block[6]) continue;
        bool const fits = (row.direction == Direction::In) == (block[0] == 0x26);
        if (found == nullptr || fits) found = &row;
    }
    return found;
}

Reply ArrayController::pause(Command const& command) {
    // 1 also keeps hot-plug events away.
    if (addressField(command) > 1)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "address field " + std::to_string(addressField(command)) + ", expected 0 or 1");
    m_paused = true;
    return {};
}

Reply ArrayController::resume(Command const& command) {
    if (addressField(command) > 1)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "address field " + std::to_string(addressField(command)) + ", expected 0 or 1");
    Reply reply;
    if (!m_paused) reply.notes.push_back("background activity wasn't paused");
    m_paused = false;
    return reply;
}

Reply ArrayController::freeCollected(Command const&) {
    Reply reply;
    std::string const held = m_collected.describe();
    if (m_collected.drop()) reply.notes.push_back("dropped " + held);
    return reply;
}

Reply ArrayController::collect(Command const& command) {
    // Bytes 2 to 5: count high, number high, count low, number low.
    unsigned const count = command.block[2] << 8 | command.block[4];
    unsigned const number = command.block[3] << 8 | command.block[5];
    std::string const problem = m_collected.collect(number, count, command.dataOut);
    return problem.empty() ? Reply()
                           : protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, "protocol: " + problem);
}

Reply ArrayController::flash(Command const& command) {
    std::uint64_t const mode = addressField(command);
    if (mode != 0 && mode != UPDATE_WITHOUT_DOWNTIME)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "protocol: address field " + std::to_string(mode) + ", expected 0 or 2");
    if (!m_collected.complete())
        return protocolError(
            ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
            "protocol: flash with " + m_collected.describe() + " collected, expected a whole image");
    Bytes const image = m_collected.contents();
    m_collected.drop();
    ImageInfo info;
    std::string problem = checkImage(image, info);
    if (problem.empty() && info.family != m_firmware.family())
        problem = "image for the family \"" + info.family + "\", this is a controller of the family \"" +
                  m_firmware.family() + "\"";
    if (problem.empty() && info.version.empty()) problem = "image without a version";
    Reply reply;
    if (!problem.empty()) reply = protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    if (!m_paused) reply.errors.push_back("protocol: flash while background activity isn't paused");
    if (!problem.empty()) return reply;

    std::string const before = m_firmware.version(Rom::Active);
    m_firmware.store(image, info);
    reply.events.push_back("firmware " + info.version + " (" + std::to_string(image.size()) +
                           " bytes) stored in the active ROM, " + before + " is the inactive one");
    if (mode == UPDATE_WITHOUT_DOWNTIME && m_setup.updatesWithoutDowntime) {
        if (m_firmware.restart())
            reply.events.push_back("firmware " + info.version + " runs without a restart");
    } else if (mode == UPDATE_WITHOUT_DOWNTIME) {
        reply.notes.push_back(
            "no update without downtime on this controller: the firmware waits for a restart");
    }
    return reply;
}

Reply ArrayController::softReset(Command const&) {
    Reply reply;
    restart(reply.events);
    return reply;
}

Reply ArrayController::toggleRom(Command const&) {
    if (!m_firmware.toggle()) {
        Reply reply = checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
        reply.notes.push_back("the inactive ROM is empty");
        return reply;
    }
    Reply reply;
    reply.events.push_back("firmware " + m_firmware.version(Rom::Active) + " is in the active ROM, " +
                           m_firmware.version(Rom::Inactive) + " in the inactive one");
    return reply;
}

std::unique_ptr<Device> makeArrayController(DeviceFrame frame, Object const& object,
                                            std::filesystem::path const& firmware) {
    ArrayController::Setup setup;
    std::uint8_t const* nameBytes = reinterpret_cast<std::uint8_t const*>(frame.name.data());
    std::uint32_t const nameCrc = crc32({nameBytes, frame.name.size()});
    setup.product = object.at("product").text(16);
    setup.model = object.textOr("model", setup.product, 64);
    setup.serial = object.textOr("serial", "VQ" + std::to_string(nameCrc), 32);
    setup.worldWideName = 0x51E5C00000000000U | std::uint64_t{nameCrc} << 8;
    setup.updatesWithoutDowntime = object.booleanOr("supports_tofu", false);
    setup.collectLimit = object.numberOr("collect_limit", 64 * 1024 * 1024, 1024 * 1024 * 1024);

    ControllerFirmware::Versions versions;
    Value const value = object.at("firmware");
    if (value.json().is_object()) {
        Object const each(value);
        versions.active = each.at("active").text(IMAGE_VERSION_SIZE);
        versions.running = each.textOr("running", versions.active, IMAGE_VERSION_SIZE);
        versions.inactive = versions.active;
        if (auto const inactive = each.find("inactive")) {
            versions.inactive = std::nullopt;
            if (!inactive->json().is_null()) versions.inactive = inactive->text(IMAGE_VERSION_SIZE);
        }
        each.refuseOthers();
    } else {
        versions.running = versions.active = value.text(IMAGE_VERSION_SIZE);
        versions.inactive = versions.active;
    }
    if (versions.active.empty() || versions.running.empty() || versions.inactive == "")
        value.refuse("versions that aren't empty");

    ControllerRecords::Facts facts;
    facts.product = setup.product;
    facts.serial = setup.serial;
    facts.slot = frame.pci.slot;
    facts.boardId = std::uint32_t{frame.pci.subsystemDevice} << 16 | frame.pci.subsystemVendor;
    facts.worldWideName = setup.worldWideName;
    ControllerRecords records(object, facts);
    TargetPlace place;
    place.firmware = firmware;
    place.device = frame.name;
    ControllerUnits units(object, place);
    ControllerParts parts(object, firmware, frame.name);
    ControllerFirmware rom(firmware, frame.name, object.at("family").text(IMAGE_FAMILY_SIZE), versions);
    ControllerNvram nvram(object);
    CollectBuffer collected(firmware / (frame.name + ".collect"), setup.collectLimit);
    return std::make_unique<ArrayController>(std::move(frame), std::move(setup), std::move(rom),
                                             std::move(records), std::move(collected), std::move(units),
                                             std::move(parts), std::move(nvram));
}

}  // namespace simulator
