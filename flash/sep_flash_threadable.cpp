#include "flash/sep_flash_threadable.h"

#include "command/csmi_command.h"
#include "command/device_command_return.h"
#include "common/conversion.h"
#include "common/debug_logger.h"
#include "core/tolkmod.h"
#include "flash/vocabulary.h"

namespace Operations {
namespace {

namespace Results = Interface::TOLKMod::OperationReturn;
namespace FlashResults = Interface::FlashMod::OperationReturn;
using Common::DebugLogger;

constexpr std::uint32_t MODE_7_CHUNK_SIZE = 4096;

}  // namespace

SEPFlashThreadable::SEPFlashThreadable(Common::shared_ptr<Core::Device> const& device,
                                       Common::string const& product, ImageSpan image, bool behindController)
    : m_device(device),
      m_product(product.c_str()),
      m_image(image),
      m_behindController(behindController),
      m_sep(dynamic_cast<Schema::SEP*>(device.get())),
      m_uniqueId(device->getValueFor(Interface::TOLKMod::Device::ATTR_NAME_UNIQUE_ID).c_str()) {}

Common::Synchronization::ProcessMutex& SEPFlashThreadable::resultMutex() {
    static Common::Synchronization::ProcessMutex mutex;
    return mutex;
}

void SEPFlashThreadable::pauseOrResume(bool pause) {
    if (m_behindController || m_sep == nullptr) return;
    CSMIPauseResumeActivity command(pause);
    ResultLock const lock(resultMutex());
    command(static_cast<CSMIDevice&>(*m_sep));
}

bool SEPFlashThreadable::execute(FlashSEPFirmware& command, Core::OperationReturn& result) {
    if (m_sep == nullptr) {
        ResultLock const lock(resultMutex());
        DebugLogger::LogCommand("Device %s refused: an enclosure processor expected", m_uniqueId.c_str());
        result = Core::OperationReturn(Results::ATTR_VALUE_STATUS_NOT_SUPPORTED);
        return false;
    }
    if (command(static_cast<SCSIDevice&>(*m_sep))) return true;
    // What DeviceCommandReturn::executeCommand does, apart: the command must not hold up the other threads.
    ResultLock const lock(resultMutex());
    return DeviceCommandReturn::FileOutcome(command, result);
}

void SEPFlashThreadable::describeFailure(FlashSEPFirmware const& command,
                                         Core::OperationReturn& result) const {
    if (result) return;
    if (result.hasAttributeAndIs(Results::ATTR_NAME_STATUS,
                                 FlashResults::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR)) {
        result.Publish(result, Core::Attribute(FlashResults::ATTR_NAME_ADDITIONAL_STATUS,
                                               Conversion::toString(command.addtionalStatus())));
        DebugLogger::LogCommand("%s", FlashResults::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
    }
    result.Publish(result, Core::Attribute(Results::ATTR_NAME_UNIQUE_ID, m_uniqueId.c_str()));
}

void SEPFlashThreadable::flashInOneGo(FlashSEPFirmware::EnFlashType type, std::uint32_t chunkSize) {
    FlashSEPFirmware command(type, m_image, chunkSize);
    DebugLogger::LogCommand("Flash started");
    bool const written = execute(command, m_result);
    DebugLogger::LogCommand(written ? "Flash succeeded" : "Flash failed");
    ResultLock const lock(resultMutex());
    describeFailure(command, m_result);
}

void Mode7SEPFlashThreadable::operator()() {
    flashInOneGo(FlashSEPFirmware::eMode7Chunks, MODE_7_CHUNK_SIZE);
}

void ModeESEPFlashThreadable::operator()() {
    flashInOneGo(FlashSEPFirmware::eMode14Chunks, m_chunkSize);
}

}  // namespace Operations
