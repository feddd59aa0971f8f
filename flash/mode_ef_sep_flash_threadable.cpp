#include "flash/mode_ef_sep_flash_threadable.h"

#include <cstddef>
#include <cstring>

#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "flash/sep_products.h"
#include "flash/vocabulary.h"
#include "storage/operations/physical_device_iterator.h"
#include "storage/operations/storage_system_finder.h"
#include "storage/schema/drives.h"
#include "storage/vocabulary/array_controller.h"
#include "storage/vocabulary/sep.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::SEP;
namespace Controller = Interface::StorageMod::ArrayController;
namespace Results = Interface::TOLKMod::OperationReturn;
namespace FlashResults = Interface::FlashMod::OperationReturn;
using Common::DebugLogger;

constexpr std::uint32_t CHUNK_SIZE = 4096;
constexpr std::uint32_t DID_NOT_COME_BACK = 0x80000000;

// Bits of an identify page's map of paths.
constexpr unsigned char FIRST_PATH = 1U << 0;
constexpr unsigned char SECOND_PATH = 1U << 1;

constexpr unsigned WWID_SIZE = 8;
constexpr char const* NO_WWID = "0000000000000000";

/// Boxes that a device can be found by: one more is told than is believed after a reset.
constexpr unsigned char LAST_BOX_TOLD = 254;
constexpr unsigned char LAST_BOX_SEARCHED = 253;

/// Up to this revision PRODUCT_ID_ENCL_11 has a WWID that is lower by WWID_SHIFT in its last byte.
constexpr float SHIFTING_REVISION = 1.42F;
constexpr unsigned char WWID_SHIFT = 8;

/// A port as a record has it; empty for one that isn't known.
Common::string portOf(char const (&text)[2]) {
    Common::string const port(text, strnlen(text, sizeof text));
    return port == "  " || port == "??" ? Common::string() : port;
}

unsigned char boxOf(unsigned char box) {
    return box <= LAST_BOX_TOLD ? box : 0;
}

Common::string wwidOf(unsigned char const* bytes) {
    return Conversion::arrayToString<unsigned char>(bytes, WWID_SIZE, "");
}

/// The WWID with `shift` added to its last byte, without a carry.
Common::string shifted(Common::string const& wwid, unsigned char shift) {
    unsigned char bytes[WWID_SIZE] = {};
    Conversion::stringToArray<unsigned char>(wwid, bytes, WWID_SIZE);
    bytes[WWID_SIZE - 1] = static_cast<unsigned char>(bytes[WWID_SIZE - 1] + shift);
    return wwidOf(bytes);
}

/// A model that two products share: the firmware decides which of them it calls itself.
Common::string swappedProduct(Common::string const& product) {
    if (product == PRODUCT_ID_ENCL_05) return PRODUCT_ID_ENCL_06;
    if (product == PRODUCT_ID_ENCL_06) return PRODUCT_ID_ENCL_05;
    return {};
}

/// Whether a page reaches behind all that a device is known by: half a WWID could be another's.
bool hasAllMembers(unsigned received) {
    return received > offsetof(Records::PHYSICAL_DRIVE_STATUS, bMultiPathBox8);
}

bool isAtPlace(Records::PHYSICAL_DRIVE_STATUS const& found, Common::string const& port, unsigned char box) {
    return !port.empty() && box >= 1 && box <= LAST_BOX_SEARCHED &&
           Common::string(found.sPhysicalPort, strnlen(found.sPhysicalPort, 2)) == port &&
           found.bPhysicalBox == box;
}

}  // namespace

ModeEFSEPFlashThreadable::ModeEFSEPFlashThreadable(Common::shared_ptr<Core::Device> const& device,
                                                   Common::string const& product, ImageSpan image,
                                                   bool behindController)
    : SEPFlashThreadable(device, product, image, behindController),
      m_storageSystem(storageSystemFinder(device)) {
    if (behindController) {
        identifyBehindController();
    } else {
        identifyByAttributes();
    }
    m_place = place();
}

void ModeEFSEPFlashThreadable::identifyBehindController() {
    if (m_sep == nullptr) return;
    Identify page;
    Core::OperationReturn outcome;
    unsigned received = 0;
    Schema::PhysicalDrive::identifyPhysicalDrive(m_device, *m_sep, m_sep->bmicIndex(), page, outcome,
                                                 &received);
    if (!outcome || page.get() == nullptr || !hasAllMembers(received)) return;
    m_wwid = wwidOf(page->bWWID);
    m_port = portOf(page->sPhysicalPort);
    m_box = boxOf(page->bPhysicalBox);
    if (!m_port.empty() && m_box != 0 && (page->bRedundantPathPresentMap & SECOND_PATH) != 0 &&
        m_storageSystem &&
        m_storageSystem->hasAttributeAndIs(Controller::ATTR_NAME_MULTI_PATH_SUPPORTED,
                                           Controller::ATTR_VALUE_MULTI_PATH_SUPPORTED_TRUE)) {
        m_redundantPort = portOf(page->sMultiPathPort2);
        m_redundantBox = boxOf(page->bMultiPathBox2);
    }
    if (m_product == PRODUCT_ID_ENCL_11) {
        m_revision = Conversion::toNumber<float>(
            Common::string(page->sDriveFirmwareRevision, sizeof page->sDriveFirmwareRevision));
    }
}

void ModeEFSEPFlashThreadable::identifyByAttributes() {
    m_wwid = m_device->getValueFor(Names::ATTR_NAME_WWID).c_str();
    if (!m_device->hasAttributeAndIs(Names::ATTR_NAME_PORT, Names::ATTR_VALUE_PORT_UNKNOWN)) {
        m_port = m_redundantPort = m_device->getValueFor(Names::ATTR_NAME_PORT).c_str();
    }
    auto const box = Conversion::toNumber<unsigned int>(m_device->getValueFor(Names::ATTR_NAME_BOX));
    m_box = m_redundantBox = box <= LAST_BOX_TOLD ? static_cast<unsigned char>(box) : 0;
    m_revision = Conversion::toNumber<float>(m_device->getValueFor(Names::ATTR_NAME_FIRMWARE_REVISION));
}

Common::string ModeEFSEPFlashThreadable::place() const {
    Common::string const& port = m_port.empty() ? m_redundantPort : m_port;
    return Common::string(port.c_str()) + ":" + Conversion::toString(m_box != 0 ? m_box : m_redundantBox);
}

void ModeEFSEPFlashThreadable::operator()() {
    PauseDeviceActivity();
    Flash();
}

void ModeEFSEPFlashThreadable::Flash() {
    auto type = FlashSEPFirmware::eMode14Chunks;
    {
        ResultLock const lock(resultMutex());
        SepProduct const* const product = findSepProduct(m_product);
        if (product == nullptr || product->takesSRecords) type = FlashSEPFirmware::eMode14SRecords;
    }
    FlashSEPFirmware command(type, m_image, CHUNK_SIZE);
    DebugLogger::LogCommand("Flash started (Mode E) : SEP at %s", m_place.c_str());
    execute(command, m_result);
    DebugLogger::LogCommand("Flash finished (Mode E) : SEP at %s", m_place.c_str());
    ResultLock const lock(resultMutex());
    describeFailure(command, m_result);
    DebugLogger::LogCommand("Flash %s (Mode E) : SEP at %s", m_result ? "succeeded" : "failed",
                            m_place.c_str());
}

bool ModeEFSEPFlashThreadable::mayGoOn() const {
    return m_result || m_result.hasAttributeAndIs(Results::ATTR_NAME_STATUS,
                                                  FlashResults::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
}

void ModeEFSEPFlashThreadable::Reset() {
    if (!mayGoOn()) return;
    Core::OperationReturn outcome;
    FlashSEPFirmware command(FlashSEPFirmware::eActivate, {}, CHUNK_SIZE);
    DebugLogger::LogCommand("Resetting SEP (Mode F) : SEP at %s", m_place.c_str());
    execute(command, outcome);
    ResultLock const lock(resultMutex());
    // What went wrong with the flash says more than what becomes of the reset behind it.
    if (m_result) m_result = outcome;
    if (!outcome) m_result.Publish(m_result, Core::Attribute(Results::ATTR_NAME_UNIQUE_ID, m_uniqueId));
}

void ModeEFSEPFlashThreadable::Ping() {
    if (!mayGoOn()) return;
    DebugLogger::LogCommand("Discovering SEP after reset");
    if (isFound()) {
        DebugLogger::LogCommand("Discovery succeeded");
        return;
    }
    DebugLogger::LogCommand("Discovery failed");
    fileAsMissing();
}

bool ModeEFSEPFlashThreadable::isFound() const {
    auto const* const adapter = dynamic_cast<ConcreteSCSIDevice const*>(m_storageSystem.get());
    if (adapter == nullptr) return false;
    PhysicalDeviceIterator const devices(*adapter);
    for (auto handle = devices.begin(PhysicalDeviceIterator::SEP_TYPE);
         handle != devices.end(PhysicalDeviceIterator::SEP_TYPE); ++handle) {
        if (isThisDevice(*handle)) return true;
    }
    return false;
}

bool ModeEFSEPFlashThreadable::isThisDevice(Common::string const& handle) const {
    auto* const controller = dynamic_cast<BMICDevice*>(m_storageSystem.get());
    if (controller == nullptr) {
        // A plain adapter identifies nothing; its list has the addresses.
        return isOwnName(PhysicalDeviceIterator::getSasAddress(handle));
    }
    Schema::SEP const candidate(handle);
    Identify page;
    Core::OperationReturn outcome;
    unsigned received = 0;
    Schema::PhysicalDrive::identifyPhysicalDrive(m_storageSystem, *controller, candidate.bmicIndex(), page,
                                                 outcome, &received);
    return outcome && page.get() != nullptr && hasAllMembers(received) && hasIdentityOf(*page);
}

bool ModeEFSEPFlashThreadable::hasIdentityOf(Records::PHYSICAL_DRIVE_STATUS const& found) const {
    if (isOwnName(wwidOf(found.bWWID))) return true;
    if (isAtPlace(found, m_port, m_box)) return true;
    if ((found.bRedundantPathPresentMap & FIRST_PATH) != 0 &&
        isAtPlace(found, m_redundantPort, m_redundantBox)) {
        return true;
    }
    Common::string const swapped = swappedProduct(m_product);
    if (!swapped.empty() &&
        Common::string(found.sDriveModel, sizeof found.sDriveModel).find(swapped.TrimRight()) !=
            Common::string::npos) {
        return true;
    }
    return false;
}

/// By the WWID alone, also one that the firmware moved.
bool ModeEFSEPFlashThreadable::isOwnName(Common::string const& wwid) const {
    if (m_wwid.empty() || m_wwid == NO_WWID || wwid.empty() || wwid == NO_WWID) return false;
    if (wwid == m_wwid) return true;
    if (m_product != PRODUCT_ID_ENCL_11 || !(m_revision > 0)) return false;
    return m_revision <= SHIFTING_REVISION ? shifted(m_wwid, WWID_SHIFT) == wwid
                                           : shifted(wwid, WWID_SHIFT) == m_wwid;
}

void ModeEFSEPFlashThreadable::fileAsMissing() {
    std::uint32_t additional = DID_NOT_COME_BACK;
    if (!m_result) {
        additional |= Conversion::toNumber<unsigned int>(
            m_result.getValueFor(FlashResults::ATTR_NAME_ADDITIONAL_STATUS));
    }
    m_result.Receive(
        Core::Attribute(Results::ATTR_NAME_STATUS, FlashResults::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR));
    m_result.Receive(
        Core::Attribute(FlashResults::ATTR_NAME_ADDITIONAL_STATUS, Conversion::toString(additional)));
    m_result.Publish(m_result, Core::Attribute(Results::ATTR_NAME_UNIQUE_ID, m_uniqueId));
}

}  // namespace Operations
