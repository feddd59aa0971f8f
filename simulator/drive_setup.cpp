/// Reading drives from a scenario.

#include "simulator/drive.h"

namespace simulator {

namespace {

struct InterfaceRow {
    char const* name;
    DriveInterface interface;
    unsigned rotation;
    bool runsAtOnce;
};

/// A solid state drive's rotation is 1 (SBC, ACS).
constexpr InterfaceRow INTERFACES[] = {
    {"sas", DriveInterface::Sas, 10000, true},           {"sata", DriveInterface::Sata, 7200, false},
    {"sas_ssd", DriveInterface::SasSsd, 1, true},        {"sata_ssd", DriveInterface::SataSsd, 1, false},
    {"parallel", DriveInterface::Parallel, 15000, true},
};

constexpr std::uint64_t DEFAULT_BLOCKS = 585937500;  // 300 GB

template <typename Choice>
struct ChoiceRow {
    char const* name;
    Choice choice;
};
constexpr ChoiceRow<DriveState> STATES[] = {
    {"ok", DriveState::Ok}, {"failing", DriveState::Failing}, {"missing", DriveState::Missing}};
constexpr ChoiceRow<DriveRole> ROLES[] = {
    {"unassigned", DriveRole::Unassigned}, {"data", DriveRole::Data}, {"spare", DriveRole::Spare}};
constexpr ChoiceRow<Authentication> AUTHENTICATIONS[] = {{"ok", Authentication::Ok},
                                                         {"failed", Authentication::Failed},
                                                         {"not_supported", Authentication::NotSupported}};

template <typename Rows>
auto const& chooseRow(Object const& object, char const* key, Rows const& rows, std::size_t fallback) {
    auto const value = object.find(key);
    if (!value) return rows[fallback];
    std::vector<std::string> names;
    for (auto const& row : rows)
        names.push_back(row.name);
    std::string const chosen = value->choice(names);
    for (auto const& row : rows)
        if (row.name == chosen) return row;
    return rows[fallback];
}

unsigned numberOf(Object const& object, char const* key, unsigned fallback, unsigned greatest) {
    return static_cast<unsigned>(object.numberOr(key, fallback, greatest));
}

Drive::Carrier readCarrier(Value const& value) {
    Object const object(value);
    Drive::Carrier carrier;
    carrier.family = object.textOr("family", "CARRIER", IMAGE_FAMILY_SIZE);
    carrier.application = static_cast<unsigned>(object.at("application").number(255, 1));
    carrier.bootloader = numberOf(object, "bootloader", 1, 255);
    carrier.authentication = chooseRow(object, "authentication", AUTHENTICATIONS, 0).choice;
    object.refuseOthers();
    return carrier;
}

}  // namespace

std::unique_ptr<Drive> makeDrive(InquiryIdentity identity, Object const& object, TargetPlace const& place) {
    Drive::Setup setup;
    setup.place = place;
    setup.revision = identity.revision;
    setup.index = numberOf(object, "index", place.index, 0xFFFF);
    InterfaceRow const& interface = chooseRow(object, "interface", INTERFACES, 0);
    setup.interface = interface.interface;
    setup.rotation = numberOf(object, "rotation", interface.rotation, 0xFFFF);
    setup.runsAtOnce = object.booleanOr("runs_at_once", interface.runsAtOnce);
    bool const sata = setup.interface == DriveInterface::Sata || setup.interface == DriveInterface::SataSsd;
    if (sata && !object.has("vendor")) identity.vendor = "ATA";
    if (identity.revision.empty() || identity.revision.size() > (sata ? 8U : 4U))
        object.at("revision").refuse(sata ? "1 to 8 characters" : "1 to 4 characters");
    // What people see of a drive behind an adapter is its address, behind a controller its number.
    Bytes address(8);
    putBig(address.data(), 8, place.worldWideName);
    setup.name =
        readTargetName(object, "drive-" + (place.hasIndex ? std::to_string(setup.index) : toHex(address)));
    setup.state = chooseRow(object, "state", STATES, 0).choice;
    setup.role = chooseRow(object, "role", ROLES, 0).choice;
    setup.logicalDrive = numberOf(object, "logical_drive", 0, 1023);
    setup.blocks = object.numberOr("blocks", DEFAULT_BLOCKS, ~std::uint64_t{0});
    if (setup.blocks == 0) object.at("blocks").refuse("a number that isn't 0");
    setup.blockSize = numberOf(object, "block_size", 512, 0xFFFF);
    setup.bay = numberOf(object, "bay", setup.index % 24 + 1, 0xFF);
    if (auto const carrier = object.find("carrier")) setup.carrier = readCarrier(*carrier);
    setup.authentication = chooseRow(object, "authentication", AUTHENTICATIONS, setup.carrier ? 0 : 2).choice;
    if (auto const value = object.find("wear")) {
        Object const wear(*value);
        setup.wear.percent = numberOf(wear, "percent", 0, 0xFFFF);
        setup.wear.remainingDays = numberOf(wear, "remaining_days", 0xFFFF, 0xFFFFFFFF);
        setup.wear.powerOnHours = numberOf(wear, "power_on_hours", 0, 0xFFFFFFFF);
        setup.wear.powerCycles = numberOf(wear, "power_cycles", 0, 0xFFFFFFFF);
        setup.wear.flags = numberOf(wear, "flags", 0, 0xFF);
        wear.refuseOthers();
    }
    if (auto const value = object.find("erase")) {
        Object const erase(*value);
        setup.erase.status = numberOf(erase, "status", 0, 0xFF);
        setup.erase.pattern = numberOf(erase, "pattern", 0, 0xFF);
        setup.erase.percent = numberOf(erase, "percent", 0, 0xFF);
        erase.refuseOthers();
    }
    setup.statistics = readOverride(object, "mnp_statistics");
    return std::make_unique<Drive>(std::move(identity), std::move(setup));
}

}  // namespace simulator
