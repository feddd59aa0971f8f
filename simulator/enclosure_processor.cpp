#include "simulator/enclosure_processor.h"

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

namespace simulator {

namespace {

constexpr std::uint64_t SECOND = 1'000'000;
constexpr std::uint64_t CHUNK_TIME = 5000;
constexpr std::uint64_t FOREVER = ~std::uint64_t{0};

constexpr std::uint8_t WHOLE_IMAGE = 5;
constexpr std::uint8_t CHUNKS = 7;
constexpr std::uint8_t DEFERRED = 14;
constexpr std::uint8_t ACTIVATE = 15;

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

std::string bytesText(std::uint64_t count) {
    return std::to_string(count) + " bytes";
}

}  // namespace

EnclosureProcessor::EnclosureProcessor(InquiryIdentity identity, Setup setup)
    : ScsiTarget(std::move(identity)),
      m_setup(std::move(setup)),
      m_model(&findSepModel(trimmed(m_identity.product))),
      m_factoryProduct(trimmed(m_identity.product)),
      m_factoryName(m_identity.worldWideName),
      m_firmware(
          m_setup.place.firmware, m_setup.place.device + "." + m_setup.name, m_factoryProduct,
          {m_identity.revision, m_setup.stored.empty() ? m_identity.revision : m_setup.stored, std::nullopt}),
      m_download(m_setup.place.firmware / (m_setup.place.device + "." + m_setup.name + ".download")),
      m_runningFamily(m_factoryProduct),
      m_storedFamily(m_factoryProduct) {}

bool EnclosureProcessor::isNeighbour(EnclosureProcessor const& other) const {
    return m_model->reachesBox && m_factoryProduct == other.m_factoryProduct &&
           m_setup.place.port == other.m_setup.place.port && m_setup.place.box == other.m_setup.place.box &&
           m_setup.place.chassisSerial == other.m_setup.place.chassisSerial;
}

void EnclosureProcessor::initialise() {
    m_firmware.initialise();
    becomeWhatRuns();
}

void EnclosureProcessor::becomeWhatRuns() {
    m_identity.revision = m_firmware.running();
    m_identity.product = m_runningFamily;
    m_identity.worldWideName = m_factoryName;
    // Firmware of this model behind 1.42 counts its addresses from another start.
    bool const moved =
        m_model->product == "ENCL 11 SEP" && std::strtod(m_firmware.running().c_str(), nullptr) > 1.42;
    if (moved)
        m_identity.worldWideName = (m_factoryName & ~std::uint64_t{0xFF}) | ((m_factoryName + 8) & 0xFF);
}

bool EnclosureProcessor::present(std::uint64_t now) const {
    return now >= m_awayUntil && !m_unscanned;
}

void EnclosureProcessor::scan(std::uint64_t now) {
    if (now >= m_awayUntil) m_unscanned = false;
}

void EnclosureProcessor::missed(Command const& command) {
    if (command.block[0] == 0x3B && m_download.begun()) m_broken = true;
}

Reply EnclosureProcessor::execute(Command const& command) {
    if (!present(command.now)) {
        Reply reply;
        reply.commandStatus = COMMAND_INVALID;
        reply.notes.push_back(m_setup.name + " is away");
        return reply;
    }
    Reply reply = answer(command);
    if (reply.data.size() > command.room()) reply.data.resize(command.room());
    return reply;
}

Reply EnclosureProcessor::answer(Command const& command) {
    Bytes const& block = command.block;
    auto const needs = [&](std::size_t size) { return block.size() >= size; };
    switch (block.empty() ? 0 : block[0]) {
        case 0x08:  // READ: page 0x93, chassis serial number; page 0x90, automatic revision
            if (needs(6) && (block[3] == 0x93 || block[3] == 0x90)) {
                Reply reply;
                reply.data.resize(block[3] == 0x93 ? 32 : 8);
                putText(reply.data.data(), reply.data.size(),
                        block[3] == 0x93 ? m_setup.place.chassisSerial : m_firmware.running());
                return reply;
            }
            break;
        case 0x1C:
            return diagnostic(command);
        case 0x26:  // zoning, 2 bytes, or configuration mode, 4
            if (needs(10) && block[6] == 0x11) {
                std::size_t const size = getBig(&block[7], 2);
                Reply reply;
                reply.data.resize(size == 2 ? 2 : 4);
                putBig(reply.data.data(), reply.data.size(),
                       size == 2 ? m_setup.zoning : m_setup.configurationMode);
                return reply;
            }
            break;
        case 0x27:
            return vendorWrite(command);
        case 0x3B:
            return writeBuffer(command);
        case 0x3C:
            return readBuffer(command);
        default:
            return ScsiTarget::execute(command);
    }
    return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
}

Reply EnclosureProcessor::vendorWrite(Command const& command) {
    if (command.block.size() < 10 || command.block[6] != 0x10)
        return checkCondition(5, ASC_INVALID_FIELD_IN_COMMAND_BLOCK);
    // A short block of data is zoning, a longer one the configuration mode; byte 2 is the mode of both.
    if (command.dataOut.size() <= 2)
        m_setup.zoning = command.block[2];
    else
        m_setup.configurationMode = command.block[2];
    return {};
}

Reply EnclosureProcessor::writeBuffer(Command const& command) {
    Bytes const& block = command.block;
    if (block.size() != 10)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "WRITE BUFFER of " + bytesText(block.size()) + ", expected 10");
    std::uint8_t const mode = block[1];
    std::uint64_t const length = getBig(&block[6], 3);
    Reply reply;
    if (length != command.dataOut.size() || (length == 0) != (command.direction == Direction::None)) {
        reply = protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK, "WRITE BUFFER announces " +
                                                                      bytesText(length) + " and brings " +
                                                                      std::to_string(command.dataOut.size()));
    } else if (block[2] != 0 || block[9] != 0) {
        reply = protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                              "WRITE BUFFER with buffer " + std::to_string(block[2]) + " and control byte " +
                                  std::to_string(block[9]) + ", expected 0 and 0");
    } else if (mode == ACTIVATE && m_model->mode == DEFERRED) {
        return length == 0 ? activate(command.now)
                           : protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                                           "WRITE BUFFER mode 15 with data, expected none");
    } else if (mode == m_model->mode || (mode == WHOLE_IMAGE && m_model->image == SepImage::Blocks)) {
        reply = take(command, mode);
    } else {
        reply = protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                              "WRITE BUFFER mode " + std::to_string(mode) + ", " + m_factoryProduct +
                                  " takes mode " + std::to_string(m_model->mode));
    }
    if (!reply.good()) {
        m_download.drop();
        m_broken = true;
    }
    return reply;
}

Reply EnclosureProcessor::take(Command const& command, std::uint8_t mode) {
    std::uint64_t const offset = getBig(&command.block[3], 3);
    bool const hasOffset = mode == DEFERRED && m_model->image == SepImage::Blocks;
    if (!hasOffset && offset != 0)
        return protocolError(ASC_INVALID_FIELD_IN_COMMAND_BLOCK,
                             "offset " + std::to_string(offset) + " where none is due");
    std::string const before = hasOffset && offset == 0 ? m_download.describe() : "nothing";
    std::string problem;
    if (m_model->image == SepImage::SRecords)
        problem = m_download.addRecords(command.dataOut);
    else if (mode == WHOLE_IMAGE)
        problem = m_download.addBlock(0, command.dataOut.size(), command.dataOut);
    else
        problem = m_download.addBlock(hasOffset ? std::optional<std::size_t>(offset) : std::nullopt,
                                      m_model->chunk, command.dataOut);
    if (problem.empty() && mode == WHOLE_IMAGE && !m_download.whole())
        problem = m_download.describe() + " in one command that brings a whole image";
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    m_broken = false;
    Reply reply;
    if (m_download.whole()) reply = install(mode != DEFERRED, command.now);
    reply.microseconds += CHUNK_TIME;
    if (before != "nothing") reply.notes.push_back("dropped " + before);
    return reply;
}

/// Checks what has arrived and stores it.
Reply EnclosureProcessor::install(bool runsAtOnce, std::uint64_t now) {
    Bytes const image = m_download.contents();
    m_download.drop();
    ImageInfo info;
    std::string problem = checkImage(image, info);
    if (problem.empty() && info.family != m_runningFamily && !sepsSwap(m_runningFamily, info.family))
        problem = "image for \"" + info.family + "\", this is \"" + m_runningFamily + "\"";
    if (problem.empty() && (info.version.empty() || info.version.size() > 4))
        problem = "image of version \"" + info.version + "\", expected 1 to 4 characters";
    if (!problem.empty()) return protocolError(ASC_INVALID_FIELD_IN_PARAMETER_LIST, problem);
    // That takes no time of the command's: its last chunk is answered as the others are.
    Reply reply;
    std::vector<EnclosureProcessor*> reached = {this};
    reached.insert(reached.end(), m_neighbours.begin(), m_neighbours.end());
    for (EnclosureProcessor* const each : reached) {
        each->m_firmware.store(image, info);
        each->m_storedFamily = info.family;
        reply.events.push_back(each->m_setup.name + ": firmware " + info.version + " (" +
                               bytesText(image.size()) + ") stored, " + each->m_firmware.running() + " runs");
    }
    if (runsAtOnce)
        for (EnclosureProcessor* const each : reached)
            each->restart(now, false, reply.events);
    return reply;
}

Reply EnclosureProcessor::activate(std::uint64_t now) {
    Reply reply;
    if (m_download.begun() && !m_broken)
        reply.errors.push_back("protocol: activated before the image is whole: " + m_download.describe());
    else if (!m_firmware.restartNeeded())
        reply.notes.push_back("nothing waits to be activated: a restart");
    if (!reply.errors.empty()) {
        reply.scsiStatus = CHECK_CONDITION;
        reply.commandStatus = COMMAND_TARGET_STATUS;
        reply.sense = {5, 0x2C, 0};  // command sequence error
        m_download.drop();
        return reply;
    }
    restart(now, false, reply.events);
    if (m_model->reachesBox)
        for (EnclosureProcessor* const each : m_neighbours)
            each->restart(now, false, reply.events);
    return reply;
}

void EnclosureProcessor::restart(std::uint64_t now, bool byPower, std::vector<std::string>& events) {
    m_download.drop();
    m_broken = false;
    std::string const before = m_firmware.running() + " of " + m_runningFamily;
    bool const changes = m_firmware.restart();
    m_runningFamily = m_storedFamily;
    becomeWhatRuns();
    if (changes)
        events.push_back(m_setup.name + ": firmware " + m_firmware.running() + " of " + m_runningFamily +
                         " runs, before it " + before);
    m_awayUntil = 0;
    m_unscanned = false;
    if (byPower) return;
    m_awayUntil = m_setup.neverReturns ? FOREVER : now + m_setup.awayMicroseconds;
    m_unscanned = m_setup.needsScan;
}

void EnclosureProcessor::powerCycle(std::vector<std::string>& events) {
    restart(0, true, events);
}

nlohmann::json EnclosureProcessor::saveState() const {
    nlohmann::json state = m_firmware.save();
    state["download"] = m_download.save();
    state["running_family"] = m_runningFamily;
    state["stored_family"] = m_storedFamily;
    state["away_until"] = m_awayUntil;
    state["unscanned"] = m_unscanned;
    state["broken"] = m_broken;
    state["zoning"] = m_setup.zoning;
    state["configuration_mode"] = m_setup.configurationMode;
    return state;
}

void EnclosureProcessor::loadState(nlohmann::json const& state) {
    m_firmware.load(state);
    m_download.load(state.at("download"));
    m_runningFamily = state.at("running_family").get<std::string>();
    m_storedFamily = state.at("stored_family").get<std::string>();
    m_awayUntil = state.at("away_until").get<std::uint64_t>();
    m_unscanned = state.at("unscanned").get<bool>();
    m_broken = state.at("broken").get<bool>();
    m_setup.zoning = state.at("zoning").get<std::uint16_t>();
    m_setup.configurationMode = state.at("configuration_mode").get<std::uint32_t>();
    becomeWhatRuns();
}

void EnclosureProcessor::summarise(DeviceSummary& row, std::uint64_t now) const {
    row.kind = "enclosure_processor";
    row.product = m_identity.product;
    row.running = m_firmware.running();
    row.stored = m_firmware.version(Rom::Active);
    row.inactive = m_firmware.version(Rom::Inactive);
    if (m_firmware.restartNeeded()) row.state = "restart needed";
    if (!present(now)) row.state += row.state.empty() ? "away" : ", away";
}

std::unique_ptr<ScsiTarget> makeEnclosureProcessor(InquiryIdentity identity, Object const& object,
                                                   TargetPlace const& place) {
    EnclosureProcessor::Setup setup;
    setup.place = place;
    setup.place.port = object.textOr("port", place.port, 2);
    setup.place.box = static_cast<unsigned>(object.numberOr("box", place.box, 255));
    Bytes name(8);
    putBig(name.data(), 8, place.worldWideName);
    // Without an address of its own it goes by its index.
    std::string const fallback =
        place.worldWideName == 0 ? std::to_string(object.numberOr("index", 0, 0xFFFF)) : toHex(name);
    setup.name = readTargetName(object, "sep-" + fallback);
    if (identity.revision.empty()) object.at("revision").refuse("a version that isn't empty");
    setup.stored = object.textOr("stored_revision", "", 4);
    setup.neverReturns = object.booleanOr("never_returns", false);
    setup.needsScan = object.booleanOr("needs_scan", false);
    unsigned const away = findSepModel(trimmed(identity.product)).awaySeconds;
    setup.awayMicroseconds = object.numberOr("away_seconds", away, 86400) * SECOND;
    setup.zoning = static_cast<std::uint16_t>(object.numberOr("zoning", 0, 0xFFFF));
    setup.configurationMode =
        static_cast<std::uint32_t>(object.numberOr("configuration_mode", 0, 0xFFFFFFFF));
    setup.subcomponents.resize(164);
    if (auto const value = object.find("subcomponents")) {
        Bytes bytes;
        if (!value->json().is_string() || !fromHex(value->json().get_ref<std::string const&>(), bytes) ||
            bytes.size() > setup.subcomponents.size())
            value->refuse("at most 164 bytes as hexadecimal text");
        std::copy(bytes.begin(), bytes.end(), setup.subcomponents.begin());
    }
    if (auto const value = object.find("descriptors"))
        for (Value const& text : value->list())
            setup.descriptors.push_back(text.text(64));
    return std::make_unique<EnclosureProcessor>(std::move(identity), std::move(setup));
}

}  // namespace simulator
