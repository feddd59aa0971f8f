#include "simulator/scsi_target.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "simulator/drive.h"
#include "simulator/enclosure_processor.h"
#include "simulator/tape_drive.h"

namespace simulator {

namespace {

struct Kind {
    char const* name;
    std::uint8_t peripheralType;
    char const* product;
};

constexpr Kind KINDS[] = {
    {"drive", 0x00, "VIRTUAL DRIVE"},
    {"tape", 0x01, "VIRTUAL TAPE"},
    {"volume", 0x00, "LOGICAL VOLUME"},
    {"enclosure_processor", 0x0D, "VIRTUAL SEP"},
    {"array_controller", 0x0C, "VIRTUAL ARRAY"},
};

struct Name {
    std::uint8_t code;
    char const* text;
};

constexpr Name NAMES[] = {{0x00, "TEST UNIT READY"},
                          {0x08, "READ"},
                          {0x12, "INQUIRY"},
                          {0x1C, "RECEIVE DIAGNOSTIC RESULTS"},
                          {0x25, "READ CAPACITY(10)"},
                          {0x26, "READ ENCLOSURE MODE"},
                          {0x27, "WRITE ENCLOSURE MODE"},
                          {0x3B, "WRITE BUFFER"},
                          {0x3C, "READ BUFFER"},
                          {0x4D, "LOG SENSE"},
                          {0x85, "ATA PASS-THROUGH(16)"},
                          {0x9E, "READ CAPACITY(16)"},
                          {0xC2, "REPORT LOGICAL LUNS"},
                          {0xC3, "REPORT PHYSICAL LUNS"}};

}  // namespace

Reply ScsiTarget::execute(Command const& command) {
    if (command.block.empty()) return checkCondition(5, ASC_INVALID_OPERATION_CODE);
    switch (command.block[0]) {
        case 0x00:
            return {};
        case 0x12:
            return inquiry(command, m_identity);
        default:
            return checkCondition(5, ASC_INVALID_OPERATION_CODE);
    }
}

std::unique_ptr<ScsiTarget> makeScsiTarget(Object const& object, TargetPlace const& place) {
    std::vector<std::string> names;
    for (Kind const& kind : KINDS)
        names.push_back(kind.name);
    return makeScsiTarget(object, place, object.at("kind").choice(names));
}

std::unique_ptr<ScsiTarget> makeScsiTarget(Object const& object, TargetPlace const& place,
                                           std::string const& chosen) {
    Kind const& kind = *std::find_if(std::begin(KINDS), std::end(KINDS),
                                     [&](Kind const& row) { return row.name == chosen; });
    InquiryIdentity identity;
    identity.peripheralType =
        static_cast<std::uint8_t>(object.numberOr("peripheral_type", kind.peripheralType, 0xFF));
    identity.vendor = object.textOr("vendor", "VQ", 8);
    identity.product = object.textOr("product", kind.product, 16);
    identity.revision = object.textOr("revision", "1.00", chosen == "drive" ? 8 : 4);
    identity.serial = object.textOr("serial", "", 32);
    identity.worldWideName = place.worldWideName;
    if (chosen == "enclosure_processor") return makeEnclosureProcessor(std::move(identity), object, place);
    if (chosen == "drive") return makeDrive(std::move(identity), object, place);
    if (chosen == "tape") {
        Bytes address(8);
        putBig(address.data(), 8, place.worldWideName);
        std::string const number = place.hasIndex ? std::to_string(place.index) : toHex(address);
        std::string name = readTargetName(object, "tape-" + number);
        return std::make_unique<TapeDrive>(std::move(identity), std::move(name));
    }
    return std::make_unique<ScsiTarget>(std::move(identity));
}

std::string readTargetName(Object const& object, std::string const& fallback) {
    std::string name = object.textOr("name", fallback, 64);
    if (name.empty() ||
        name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-") !=
            std::string::npos)
        object.at("name").refuse("a name of letters, digits, '.', '_' and '-'");
    return name;
}

void joinTargets(std::vector<ScsiTarget*> const& targets, std::string const& where) {
    std::set<std::string> names;
    std::vector<EnclosureProcessor*> processors;
    for (ScsiTarget* const target : targets) {
        if (target->name().empty()) continue;
        if (!names.insert(target->name()).second)
            throw ScenarioError(where + ": found the name \"" + target->name() +
                                "\" a second time, expected each device to have its own");
        if (auto* const processor = dynamic_cast<EnclosureProcessor*>(target))
            processors.push_back(processor);
    }
    for (EnclosureProcessor* const own : processors)
        for (EnclosureProcessor* const other : processors)
            if (own != other && own->isNeighbour(*other)) own->join(*other);
}

std::string scsiName(std::uint8_t operationCode) {
    for (Name const& name : NAMES)
        if (name.code == operationCode) return name.text;
    char text[16];
    std::snprintf(text, sizeof text, "SCSI 0x%02X", operationCode);
    return text;
}

std::array<std::uint8_t, 8> readAddressText(Value const& value) {
    Bytes bytes;
    if (!value.json().is_string() || !fromHex(value.text(), bytes) || bytes.size() != 8)
        value.refuse("an address of sixteen hexadecimal digits");
    std::array<std::uint8_t, 8> address{};
    std::copy(bytes.begin(), bytes.end(), address.begin());
    return address;
}

}  // namespace simulator
