#include "simulator/controller_records.h"

#include <algorithm>
#include <cstdlib>

#include "simulator/record_filler.h"

namespace simulator {

namespace {

constexpr char const* RECORD_KEYS[] = {
    "identify",    "subsystem",    "controller_parameters", "redundant_parameters",
    "cache",       "cache_module", "surface_status",        "mnp_status",
    "board_power", "power_mode"};
constexpr std::size_t MOST_LOGICAL_DRIVES = 1024;

}  // namespace

ControllerRecords::ControllerRecords(Object const& device, Facts facts) : m_facts(std::move(facts)) {
    for (char const* key : RECORD_KEYS)
        m_overrides[key] = readOverride(device, key);
    if (auto const drives = device.find("logical_drives")) {
        for (Value const& drive : drives->list()) {
            Object const object(drive);
            m_logicalDrives.push_back({readOverride(object, "configuration"),
                                       readOverride(object, "original"), readOverride(object, "status"),
                                       readOverride(object, "identify")});
            object.refuseOthers();
        }
        if (m_logicalDrives.size() > MOST_LOGICAL_DRIVES)
            drives->refuse("at most " + std::to_string(MOST_LOGICAL_DRIVES) + " logical drives");
    }
    if (auto const encryption = device.find("encryption")) {
        bool const off = encryption->json() == "off";
        if (!off)
            for (auto const& [key, value] : Object(*encryption).all()) {
                auto const page = std::find_if(
                    ENCRYPTION_PAGES.begin(), ENCRYPTION_PAGES.end(),
                    [&, &name = key](EncryptionPage const& p) { return std::to_string(p.number) == name; });
                if (page == ENCRYPTION_PAGES.end())
                    throw ScenarioError(value.where() + ": found page \"" + key +
                                        "\", expected 1, 3, 6, 7, 8, 9 or 10");
                m_encryptionPages[page->number] = {value.json(), value.where()};
            }
    }
    checkAll();
}

/// Builds every record once, so that a scenario's mistakes show when it is read.
void ControllerRecords::checkAll() const {
    identifyController({}, nullptr);
    subsystem();
    controllerParameters();
    redundantParameters();
    cacheConfiguration(0, 0);
    cacheConfiguration(1, 0);
    surfaceStatus();
    mnpStatus();
    for (unsigned drive = 0; drive < m_logicalDrives.size(); ++drive) {
        logicalDriveConfiguration(drive, false, nullptr);
        logicalDriveConfiguration(drive, true, nullptr);
        logicalDriveStatus(drive);
        identifyLogicalDrive(drive);
    }
    boardPower();
    powerMode();
    for (EncryptionPage const& page : ENCRYPTION_PAGES)
        encryptionPage(page.number);
}

Bytes ControllerRecords::identifyController(FirmwareVersions const& versions,
                                            ControllerUnits const* units) const {
    Filler record(IDENTIFY_CONTROLLER);
    record.blankTexts()
        .number("bConfiguredLogicalDrives", std::min<std::size_t>(m_logicalDrives.size(), 255))
        .number("dwConfigurationSignature", 0x5C1E0001)
        .text("sRAMFirmwareRev", versions.running)
        .text("sROMFirmwareRev", versions.active)
        .text("sROMInactiveRev", versions.inactive)
        .number("bActiveROMStatus", 1)  // there is a second image to switch to
        .number("bHardwareRevision", 0x42)
        .text("sBootBlockRevision", "1.07")
        .number("dwBoardID", m_facts.boardId)
        .text("cMarketingRevision", "A")
        .number("bDrivesPerBus", 16)
        .number("wTotalAvailableMemorySize", 512)
        .text("sDDFFVersion", "0")
        .number("wMaximumLogicalDevicesSupported", 64)
        .number("wMaximumPhysicalDevicesSupported", 128)
        .number("wMaximumPhysicalDrivesPerLogicalUnit", 128)
        .number("bPCISlot", std::strtoul(m_facts.slot.c_str(), nullptr, 10) & 0xFF)
        .number("wFirmwareBuildNumber", 1)
        .number("dwMaximumSafeFullStripeSizeMB", 64)
        .number("dwTotalStructureLength", 512)
        .text("sVendorID", "VQ")
        .text("sProductID", m_facts.product)
        .number("bMaximumDevicePaths", 2)
        .number("dwFixedStructureLength", 293)
        .text("sFirmwareCompileTimeStamp", "Jan 15 2024 10:30:00")
        .number("bPCIEGeneration", 3)
        .number("bPCIEWidth", 8);
    Bytes maps;
    if (units != nullptr) {
        units->boxes().mark(record);
        units->markMaps(record, maps);
    }
    Bytes whole = record.take();
    whole.insert(whole.end(), maps.begin(), maps.end());
    return finishRecord(IDENTIFY_CONTROLLER, std::move(whole), m_overrides.at("identify"));
}

Bytes ControllerRecords::subsystem() const {
    Filler record(SUBSYSTEM_INFORMATION);
    record.blankTexts()
        .number("bControllerSlotNumber", std::strtoul(m_facts.slot.c_str(), nullptr, 10) & 0xFF)
        .text("sChassisSerialNumber", "VQCHASSIS01")
        .big("bPortName", m_facts.worldWideName)
        .text("sControllerSerialNumber", m_facts.serial)
        .text("sCacheSerialNumber", "0000000000000000")
        .big("bNodeName", m_facts.worldWideName)
        .number("bInternalPortCount", 2)
        .number("bExternalPortCount", 0)
        .text("sProductID", m_facts.product)
        .number("dwTotalStructureLength", 1600)
        .number("bControllerTemperature", 41)
        .number("bCacheModuleTemperature", 36)
        .number("wCacheModuleDataWidth", 72)
        .number("wCacheModuleXferRate", 0x4E8);
    // Two internal ports of four phys: 12 bytes each, and 32 bytes each with the port's own address.
    for (unsigned port = 0; port < 2; ++port) {
        putLittle(record.at(496 + 12 * port), 8, std::uint64_t{0xF} << 4 * port);
        putText(record.at(504 + 12 * port), 2, port == 0 ? "1I" : "2I");
        putBig(record.at(708 + 32 * port), 8, m_facts.worldWideName + 1 + port);
    }
    return finishRecord(SUBSYSTEM_INFORMATION, record.take(), m_overrides.at("subsystem"));
}

Bytes ControllerRecords::controllerParameters() const {
    Filler record(CONTROLLER_PARAMETERS);
    record.blankTexts()
        .number("wQueueDepth", 32)
        .number("bRebuildPriority", 6)
        .number("bExpandPriority", 6)
        .text("sHardwareName", m_facts.product)
        .number("dwTotalStructureLength", 512);
    return finishRecord(CONTROLLER_PARAMETERS, record.take(), m_overrides.at("controller_parameters"));
}

Bytes ControllerRecords::redundantParameters() const {
    Filler record(REDUNDANT_PARAMETERS);
    record.blankTexts()
        .text("sCurrentControllerIdentifier", m_facts.serial)
        .number("dwTotalStructureLength", 512)
        .number("wMaximumLogicalDevicesSupported", 64)
        .number("dwFixedStructureLength", 150);
    return finishRecord(REDUNDANT_PARAMETERS, record.take(), m_overrides.at("redundant_parameters"));
}

Bytes ControllerRecords::cacheConfiguration(unsigned unit, unsigned moduleVersion) const {
    Filler record(CACHE_CONFIGURATION);
    record.number("dwTotalStructureLength", 512)
        .number("wMaximumLogicalDevicesSupported", 64)
        .number("dwFixedStructureLength", 256)
        .number("wTotalMemorySize", 512)
        .number("wNonBatteryBackedMemorySize", 512)
        .number("wTotalAvailableMemorySize", 512)
        .number("bPercentReadCache", 100);
    if (moduleVersion != 0)
        record.number("bCacheAutoRev", moduleVersion)
            .number("bBoardPresent", 1)
            .number("dwCacheFlags", 1)         // flash backup installed
            .number("bCacheSupportFlags", 1);  // and supported
    return finishRecord(CACHE_CONFIGURATION, record.take(),
                        m_overrides.at(unit == 0 ? "cache" : "cache_module"));
}

Bytes ControllerRecords::surfaceStatus() const {
    Bytes record(SURFACE_STATUS.size, 0);
    putLittle(&record[1422], 4, record.size());  // total length
    return finishRecord(SURFACE_STATUS, std::move(record), m_overrides.at("surface_status"));
}

Bytes ControllerRecords::mnpStatus() const {
    return finishRecord(MNP_STATUS, Bytes(MNP_STATUS.size, 0), m_overrides.at("mnp_status"));
}

Bytes ControllerRecords::logicalDriveConfiguration(unsigned drive, bool original,
                                                   ControllerUnits const* units) const {
    Filler record(LOGICAL_DRIVE_CONFIGURATION);
    record.number("dwTotalStructureLength", 512).number("dwFixedStructureLength", 300);
    if (drive >= m_logicalDrives.size()) return record.take();
    record.number("dwSignature", 0x5C1E1000 + drive)
        .number("wPhysicalDrives", 2)
        .number("wAssignedDrives", 2)
        .number("qwBigBlocksInLogicalDrive", 1953525168)
        .number("wBlockSize", 512)
        .number("bConfigModMajorVer", 2)
        .number("wMaximumPhysicalDevicesSupported", 128);
    Bytes maps;
    if (units != nullptr) units->markRoles(record, maps, drive);
    Bytes whole = record.take();
    whole.insert(whole.end(), maps.begin(), maps.end());
    whole = finishRecord(LOGICAL_DRIVE_CONFIGURATION, std::move(whole), m_logicalDrives[drive].configuration);
    if (!original) return whole;
    return finishRecord(LOGICAL_DRIVE_CONFIGURATION, std::move(whole), m_logicalDrives[drive].original);
}

Bytes ControllerRecords::logicalDriveStatus(unsigned drive) const {
    Filler record(LOGICAL_DRIVE_STATUS);
    record.number("wMaximumPhysicalDevicesSupported", 128)
        .number("dwTotalStructureLength", LOGICAL_DRIVE_STATUS.size)
        .number("dwFixedStructureLength", 1056);
    if (drive >= m_logicalDrives.size()) return record.take();
    return finishRecord(LOGICAL_DRIVE_STATUS, record.take(), m_logicalDrives[drive].status);
}

Bytes ControllerRecords::identifyLogicalDrive(unsigned drive) const {
    Filler record(IDENTIFY_LOGICAL_DRIVE);
    if (drive >= m_logicalDrives.size()) return record.take();
    record.number("wBlockSize", 512)
        .number("dwBlocksOnVolume", 1953525168)
        .number("dwVolumeIdentifier", 0x5C1E2000 + drive)
        .text("sVolumeLabel", "VOLUME " + std::to_string(drive + 1))
        .number("qwBigBlocksInLogicalDrive", 1953525168);
    return finishRecord(IDENTIFY_LOGICAL_DRIVE, record.take(), m_logicalDrives[drive].identify);
}

Bytes ControllerRecords::boardPower() const {
    Filler record(BOARD_POWER);
    record.number("dwTotalBoardPower", 14);
    return finishRecord(BOARD_POWER, record.take(), m_overrides.at("board_power"));
}

Bytes ControllerRecords::powerMode() const {
    Filler record(POWER_MODE);
    record.number("bSupportedPowerModes", 1);
    return finishRecord(POWER_MODE, record.take(), m_overrides.at("power_mode"));
}

std::optional<Bytes> ControllerRecords::encryptionPage(unsigned number) const {
    auto const page = std::find_if(ENCRYPTION_PAGES.begin(), ENCRYPTION_PAGES.end(),
                                   [&](EncryptionPage const& each) { return each.number == number; });
    if (page == ENCRYPTION_PAGES.end()) return std::nullopt;
    Bytes record(page->layout.size, 0);
    auto const found = m_encryptionPages.find(number);
    return found == m_encryptionPages.end() ? record
                                            : finishRecord(page->layout, std::move(record), found->second);
}

}  // namespace simulator
