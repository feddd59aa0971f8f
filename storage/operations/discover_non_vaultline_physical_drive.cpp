#include "storage/operations/discover_non_vaultline_physical_drive.h"

#include <algorithm>
#include <numeric>

#include "command/scsi/inquiry_commands.h"
#include "command/scsi/sat_commands.h"
#include "common/debug_logger.h"
#include "storage/operations/csmi_enclosures.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/publish.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/adapters.h"
#include "storage/schema/enclosure.h"
#include "storage/vocabulary/physical_drive.h"
#include "storage/vocabulary/storage_enclosure.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::PhysicalDrive;
using Schema::NonVaultlinePhysicalDrive;
using DevicePointer = Common::shared_ptr<Core::Device>;

constexpr unsigned char TYPE = PhysicalDeviceIterator::DRIVE_TYPE;
constexpr char NO_ADDRESS[] = "0000000000000000";
/// What a translation puts in the place of an ATA drive's vendor (SAT).
constexpr char ATA_VENDOR[] = "ATA";

struct DriveTexts {
    Common::string vendor;
    Common::string model;
    Common::string serialNumber;
    Common::string revision;
};

void doPublish(Core::Device& drive, DriveTexts const& texts, char const* interface) {
    publishOrClear(drive, Names::ATTR_NAME_VENDOR_ID, texts.vendor);
    publishOrClear(drive, Names::ATTR_NAME_DRIVE_MODEL, texts.model);
    publishOrClear(drive, Names::ATTR_NAME_SERIAL_NUMBER, texts.serialNumber);
    publishOrClear(drive, Names::ATTR_NAME_FIRMWARE_REVISION, texts.revision);
    publish(drive, Names::ATTR_NAME_INTERFACE, interface);
}

/// IDENTIFY DEVICE (ACS): 256 words, the low byte first.
class AtaIdentity {
  public:
    explicit AtaIdentity(std::vector<unsigned char> const& data) : m_data(data) {}

    unsigned word(unsigned number) const {
        return m_data[2 * number] | static_cast<unsigned>(m_data[2 * number + 1]) << 8;
    }
    /// The first character of each word is its high byte.
    Common::string text(unsigned first, unsigned words) const {
        char characters[41] = {};
        for (unsigned i = 0; i < words && 2 * i + 1 < sizeof characters; ++i) {
            characters[2 * i] = static_cast<char>(word(first + i) >> 8);
            characters[2 * i + 1] = static_cast<char>(word(first + i));
        }
        return Common::string(characters).Trim();
    }
    /// Sixteen hexadecimal digits; empty where the drive has none.
    Common::string worldWideName() const {
        constexpr unsigned HAS_NAME = 1U << 8;
        if ((word(87) & HAS_NAME) == 0) return Common::string();
        unsigned char bytes[8];
        for (unsigned i = 0; i < 4; ++i) {
            bytes[2 * i] = static_cast<unsigned char>(word(108 + i) >> 8);
            bytes[2 * i + 1] = static_cast<unsigned char>(word(108 + i));
        }
        return Conversion::arrayToString<unsigned char>(bytes, sizeof bytes, "");
    }
    bool isSolidState() const { return word(217) == 1; }
    /// It isn't zeros, and where the last word has its signature, all bytes add up to 0.
    bool isWhole() const {
        if (std::all_of(m_data.begin(), m_data.end(), [](unsigned char byte) { return byte == 0; }))
            return false;
        constexpr unsigned char SIGNATURE = 0xA5;
        constexpr unsigned SIGNATURE_BYTE = 510;
        return m_data[SIGNATURE_BYTE] != SIGNATURE ||
               (std::accumulate(m_data.begin(), m_data.end(), 0U) & 0xFF) == 0;
    }

  private:
    std::vector<unsigned char> const& m_data;
};

}  // namespace

Core::OperationReturn DiscoverNonVaultlinePhysicalDrive::visit(Schema::HostBusAdapter& adapter) {
    PhysicalDeviceIterator const devices(adapter);
    for (auto handle = devices.begin(TYPE); handle != devices.end(TYPE); ++handle)
        discover(adapter, *handle);
    return Core::OperationReturn();
}

Core::OperationReturn DiscoverNonVaultlinePhysicalDrive::visit(Schema::StorageEnclosure& enclosure) {
    DevicePointer const system = storageSystemFinder(enclosure.getDevicePtr());
    auto const* const adapter = dynamic_cast<Schema::HostBusAdapter const*>(system.get());
    // Behind a controller the drives of a box are in its cages.
    if (adapter == nullptr) return Core::OperationReturn();
    Common::string const number =
        enclosure.getValueFor(Interface::StorageMod::StorageEnclosure::ATTR_NAME_BOX);
    std::vector<Common::string> parents;
    for (CsmiEnclosure const& box : csmiEnclosures(*adapter)) {
        if (decimalText(box.number) != number) continue;
        for (Common::string const& sep : box.seps)
            parents.push_back(PhysicalDeviceIterator::getParentSasAddress(sep));
    }
    PhysicalDeviceIterator const devices(*adapter);
    for (auto handle = devices.begin(TYPE); handle != devices.end(TYPE); ++handle) {
        Common::string const parent = PhysicalDeviceIterator::getParentSasAddress(*handle);
        if (!parent.empty() && std::find(parents.begin(), parents.end(), parent) != parents.end()) {
            discover(enclosure, *handle);
        }
    }
    return Core::OperationReturn();
}

void DiscoverNonVaultlinePhysicalDrive::discover(Core::Device& parent, Common::string const& handle) {
    Common::string const address = PhysicalDeviceIterator::getSasAddress(handle);
    if (address == NO_ADDRESS) return;
    DevicePointer const drive(new NonVaultlinePhysicalDrive(handle));
    publish(*drive, Names::ATTR_NAME_WWID, address);
    ReadSASDeviceInfo(drive);
    parent.receive(drive);
}

void DiscoverNonVaultlinePhysicalDrive::ReadSASDeviceInfo(DevicePointer drive) {
    auto& device = dynamic_cast<NonVaultlinePhysicalDrive&>(*drive);
    ReportStandardInquiry inquiry;
    if (!inquiry(device)) return;
    bool const isAta = inquiry.vendorId() == ATA_VENDOR;
    if (isAta && ReadSATADeviceInfo(drive)) return;
    VPDPage83 identification;
    if (identification(device)) device.SetUniqueID(identification.identifier());
    VPDPage80 serial;
    doPublish(*drive,
              {inquiry.vendorId(), inquiry.productId(),
               serial(device) ? serial.serialNumber() : Common::string(), inquiry.productRevision()},
              isAta ? Names::ATTR_VALUE_INTERFACE_SATA : Names::ATTR_VALUE_INTERFACE_SAS);
}

bool DiscoverNonVaultlinePhysicalDrive::ReadSATADeviceInfo(DevicePointer drive) {
    auto& device = dynamic_cast<NonVaultlinePhysicalDrive&>(*drive);
    ATAIdentify identify;
    if (!identify(device)) return false;
    AtaIdentity const identity(identify.data());
    if (identify.receivedLength() < identify.data().size() || !identity.isWhole()) {
        Common::DebugLogger::LogCommand(
            "Identity of ATA drive %s refused: %zu bytes came, %zu whose sum is 0 expected",
            drive->getValueFor(Names::ATTR_NAME_WWID).c_str(), identify.receivedLength(),
            identify.data().size());
        return false;
    }
    device.SetUniqueID(identity.worldWideName());
    doPublish(
        *drive, {ATA_VENDOR, identity.text(27, 20), identity.text(10, 10), identity.text(23, 4)},
        identity.isSolidState() ? Names::ATTR_VALUE_INTERFACE_SATA_SSD : Names::ATTR_VALUE_INTERFACE_SATA);
    return true;
}

}  // namespace Operations
