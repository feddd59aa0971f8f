#include "simulator/drive.h"

#include <nlohmann/json.hpp>

namespace simulator {

namespace {

constexpr std::uint64_t CHUNK_TIME = 5000;
constexpr std::uint64_t INSTALL_TIME = 2'000'000;
constexpr std::size_t CHUNK = 32768;
constexpr std::size_t SECTOR = 512;

constexpr std::uint8_t WHOLE_IMAGE = 5;
constexpr std::uint8_t CHUNKS = 7;

constexpr std::uint8_t ATA_READ_LOG_EXT = 0x2F;
constexpr std::uint8_t ATA_DOWNLOAD_MICROCODE = 0x92;
constexpr std::uint8_t ATA_IDENTIFY_DEVICE = 0xEC;
constexpr std::uint8_t MICROCODE_WITH_OFFSETS = 3;

constexpr std::size_t SCSI_VERSION_SIZE = 4;
constexpr std::size_t ATA_VERSION_SIZE = 8;
constexpr std::size_t CARRIER_IMAGE_LIMIT = 32768;

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::filesystem::path baseOf(Drive::Setup const& setup, char const* ending) {
    return setup.place.firmware / (setup.place.device + "." + setup.name + ending);
}

}  // namespace

Drive::Drive(InquiryIdentity identity, Setup setup)
    : ScsiTarget(std::move(identity)),
      m_setup(std::move(setup)),
      m_firmware(baseOf(m_setup, ""), trimmed(m_identity.product), m_setup.revision),
      m_download(baseOf(m_setup, ".download")) {
    if (m_setup.carrier)
        m_carrier.emplace(baseOf(m_setup, ".carrier"), m_setup.carrier->family,
                          std::to_string(m_setup.carrier->application));
    becomeWhatRuns();
}

void Drive::becomeWhatRuns() {
    std::string const& version = m_firmware.running();
    // SAT: of an ATA revision the second half, if there is one.
    m_identity.revision = version.size() > SCSI_VERSION_SIZE ? version.substr(SCSI_VERSION_SIZE) : version;
}

unsigned Drive::carrierVersion() const {
    return m_carrier ? static_cast<unsigned>(std::stoul(m_carrier->running())) : 0;
}

Reply Drive::execute(Command const& command) {
    Reply reply;
    if (m_setup.state == DriveState::Missing) {
        reply.commandStatus = COMMAND_INVALID;
        reply.notes.push_back(m_setup.name + " is missing");
        return reply;
    }
    std::uint8_t const code = command.block.empty() ? 0 : command.block[0];
    bool const fails = m_setup.state == DriveState::Failing && code != 0x12 && code != 0x4D;
    reply = fails ? checkCondition(4, 0x44) : answer(command);  // internal target failure
    if (reply.data.size() > command.room()) reply.data.resize(command.room());
    return reply;
}

Reply Drive::answer(Command const& command) {
    switch (command.block.empty() ? 0 : command.block[0]) {
        case 0x25:
        case 0x9E:
            return capacity(command);
        case 0x3B:
            return writeBuffer(command);
        case 0x4D:
            return logSense(command);
        case 0x85:
            if (isSata()) return ata(command);
            break;
        default:
            break;
    }
    return ScsiTarget::execute(command);
}

Reply Drive::writeBuffer(Command const& command) {
    Bytes const& block = command.block;
    if (block.size() != 10 || block[2] != 0)
        return protocolError(
            ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
            "WRITE BUFFER of " + std::to_string(block.size()) + " bytes, expected 10 with buffer 0");
    std::uint8_t const mode = block[1];
    std::uint64_t const offset = getBig(&block[3], 3);
    std::uint64_t const length = getBig(&block[6], 3);
    std::string problem;
    if (command.direction != Direction::Out || length != command.dataOut.size() || length == 0)
        problem =
            "length field " + std::to_string(length) + ", sent " + std::to_string(command.dataOut.size());
    else if (mode != WHOLE_IMAGE && mode != CHUNKS)
        problem = "WRITE BUFFER mode " + std::to_string(mode) + ", expected 5 or 7";
    else if (mode == WHOLE_IMAGE && offset != 0)
        problem = "offset " + std::to_string(offset) + " where none is due";
    std::string const before = offset == 0 ? m_download.describe() : "nothing";
    if (!problem.empty()) {
        m_download.drop();
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    }
    problem = m_download.addBlock(offset, mode == CHUNKS ? CHUNK : command.dataOut.size(), command.dataOut);
    if (problem.empty() && mode == WHOLE_IMAGE && !m_download.whole()) {
        problem = m_download.describe() + " in one command that brings a whole image";
        m_download.drop();
    }
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    Reply reply;
    if (m_download.whole()) reply = install();
    reply.microseconds += CHUNK_TIME;
    if (before != "nothing") reply.notes.push_back("dropped " + before);
    return reply;
}

/// ATA PASS-THROUGH(16) (SAT): byte 1 protocol, byte 2 what the length counts, byte 4 features, bytes 6 and 8
/// count and LBA low, 10 LBA mid, 14 command.
Reply Drive::ata(Command const& command) {
    Bytes const& block = command.block;
    if (block.size() != 16)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "ATA PASS-THROUGH of " + std::to_string(block.size()) + " bytes, expected 16");
    std::uint8_t const code = block[14];
    bool const sends = code == ATA_DOWNLOAD_MICROCODE;
    unsigned const protocol = block[1] >> 1 & 0xF;
    std::string problem;
    if (protocol != (sends ? 5U : 4U))
        problem = "protocol " + std::to_string(protocol) + ", expected PIO " + (sends ? "out, 5" : "in, 4");
    else if ((block[2] & 0x0F) != (sends ? 0x06 : 0x0E))
        problem = "transfer bits " + std::to_string(block[2] & 0x0F) + ", expected " + (sends ? "6" : "14");
    else if (command.direction != (sends ? Direction::Out : Direction::In))
        problem = "a transfer of the wrong direction";
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    if (sends) return downloadMicrocode(command);
    if (block[6] * SECTOR != command.bufferSize)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "a count of " + std::to_string(block[6]) + " sectors, the buffer has " +
                                 std::to_string(command.bufferSize) + " bytes");
    Reply reply;
    if (code == ATA_IDENTIFY_DEVICE) {
        reply.data = ataIdentity();
        return reply;
    }
    if (code != ATA_READ_LOG_EXT) return checkCondition(0xB, 0);  // the drive aborts what it doesn't know
    for (unsigned i = 0; i < block[6]; ++i) {
        auto const page = ataLog(block[8], static_cast<std::uint8_t>(block[10] + i));
        if (!page) return checkCondition(0xB, 0);
        reply.data.insert(reply.data.end(), page->begin(), page->end());
    }
    return reply;
}

Reply Drive::downloadMicrocode(Command const& command) {
    Bytes const& block = command.block;
    // The count goes on in LBA low, the offset, in sectors too, is in LBA mid and high (ACS).
    std::size_t const sectors = block[6] | block[8] << 8;
    std::size_t const offset = (block[10] | std::size_t{block[12]} << 8) * SECTOR;
    std::string problem;
    if (block[4] != MICROCODE_WITH_OFFSETS)
        problem = "DOWNLOAD MICROCODE subcommand " + std::to_string(block[4]) + ", expected 3";
    else if (sectors * SECTOR != command.dataOut.size())
        problem = "a count of " + std::to_string(sectors) + " sectors, sent " +
                  std::to_string(command.dataOut.size()) + " bytes";
    std::string const before = offset == 0 ? m_download.describe() : "nothing";
    if (!problem.empty())
        m_download.drop();
    else
        problem = m_download.addSectors(offset, CHUNK, command.dataOut);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    Reply reply;
    if (m_download.whole()) reply = install();
    reply.microseconds += CHUNK_TIME;
    if (before != "nothing") reply.notes.push_back("dropped " + before);
    return reply;
}

/// Checks what has arrived and stores it.
Reply Drive::install() {
    Bytes const image = m_download.contents();
    m_download.drop();
    ImageInfo info;
    std::string const problem =
        m_firmware.check(image, isSata() ? ATA_VERSION_SIZE : SCSI_VERSION_SIZE, info);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    m_firmware.store(image, info);
    Reply reply;
    reply.microseconds = INSTALL_TIME;
    reply.events.push_back(m_setup.name + ": firmware " + info.version + " (" + std::to_string(image.size()) +
                           " bytes) stored, " + m_firmware.running() + " runs");
    if (m_setup.runsAtOnce) powerCycle(reply.events);
    return reply;
}

Reply Drive::flashCarrier(Bytes const& image) {
    std::string problem;
    ImageInfo info;
    if (!m_carrier || !present(0))
        problem = m_setup.name + " has no carrier that takes firmware";
    else if (m_setup.carrier->authentication != Authentication::Ok)
        problem = "the carrier of " + m_setup.name + " isn't authenticated";
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, problem);
    if (image.size() > CARRIER_IMAGE_LIMIT)
        problem = "an image of " + std::to_string(image.size()) + " bytes, a carrier takes " +
                  std::to_string(CARRIER_IMAGE_LIMIT);
    if (problem.empty()) problem = m_carrier->check(image, 3, info);
    if (problem.empty()) problem = byteVersionProblem(info.version);
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    std::string const before = m_carrier->running();
    m_carrier->store(image, info);
    m_carrier->restart();
    Reply reply;
    reply.microseconds = INSTALL_TIME;
    reply.events.push_back(m_setup.name + ": carrier firmware " + info.version + " (" +
                           std::to_string(image.size()) + " bytes) runs, before it " + before);
    return reply;
}

void Drive::powerCycle(std::vector<std::string>& events) {
    if (m_download.begun()) m_download.drop();
    std::string const before = m_firmware.running();
    if (m_firmware.restart())
        events.push_back(m_setup.name + ": firmware " + m_firmware.running() + " runs, before it " + before);
    becomeWhatRuns();
}

bool Drive::pristine() const {
    return m_firmware.pristine() && !m_download.begun() && (!m_carrier || m_carrier->pristine());
}

void Drive::reset() {
    m_firmware.reset();
    if (m_carrier) m_carrier->reset();
    m_download.forget();
    becomeWhatRuns();
}

nlohmann::json Drive::saveState() const {
    nlohmann::json state = {{"firmware", m_firmware.save()}, {"download", m_download.save()}};
    if (m_carrier) state["carrier"] = m_carrier->save();
    return state;
}

void Drive::loadState(nlohmann::json const& state) {
    m_firmware.load(state.at("firmware"));
    m_download.load(state.at("download"));
    if (m_carrier) m_carrier->load(state.at("carrier"));
    becomeWhatRuns();
}

void Drive::summarise(DeviceSummary& row, std::uint64_t /*now*/) const {
    row.kind = "drive";
    row.product = m_identity.product;
    row.running = m_firmware.running();
    row.stored = m_firmware.stored();
    auto const add = [&](std::string const& words) { row.state += (row.state.empty() ? "" : ", ") + words; };
    if (m_firmware.restartNeeded()) add("restart needed");
    if (m_setup.state == DriveState::Failing) add("failing");
    if (m_setup.state == DriveState::Missing) add("missing");
}

std::vector<FirmwarePart> Drive::parts() const {
    if (!m_carrier) return {};
    return {{"carrier", "carrier", &*m_carrier}};
}

}  // namespace simulator
