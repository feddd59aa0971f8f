#pragma once

#include "command/scsi/flash_commands.h"
#include "common/process_mutex.h"
#include "common/scoped_mutex_lock.h"
#include "common/thread.h"
#include "core/device.h"
#include "core/operation_return.h"
#include "storage/schema/sas_devices.h"

namespace Operations {

/// The flash of one enclosure processor, step by step or as the body of a thread. Made and asked for its
/// return by the operation's thread, while no thread of its own runs.
///
/// Several run at once. Texts and results share uncounted, unlocked state beneath them, so that a thread
/// touches them only under resultMutex(); commands go out without it.
class SEPFlashThreadable : public Common::Synchronization::Threadable {
  public:
    /// The image is borrowed. `device` is kept; one that is no enclosure processor is never flashed.
    SEPFlashThreadable(Common::shared_ptr<Core::Device> const& device, Common::string const& product,
                       ImageSpan image, bool behindController);
    SEPFlashThreadable(SEPFlashThreadable const&) = delete;
    SEPFlashThreadable& operator=(SEPFlashThreadable const&) = delete;

    void operator()() override {}
    /// Behind a plain adapter the device itself pauses; a controller does it for all that is behind it.
    virtual void PauseDeviceActivity() { pauseOrResume(true); }
    virtual void Flash() {}
    /// Makes the new firmware run.
    virtual void Reset() {}
    /// Looks whether the device came back from its reset.
    virtual void Ping() {}
    virtual void ResumeDeviceActivity() { pauseOrResume(false); }

    Core::OperationReturn const& result() const { return m_result; }

  protected:
    using ResultLock = Common::Synchronization::ScopedMutexLock<Common::Synchronization::ProcessMutex>;
    static Common::Synchronization::ProcessMutex& resultMutex();

    /// Runs the command and files its outcome in `result`. False when it failed.
    bool execute(FlashSEPFirmware& command, Core::OperationReturn& result);
    /// Names the device in a return that isn't good, and gives a flash error what the device said. Under
    /// resultMutex().
    void describeFailure(FlashSEPFirmware const& command, Core::OperationReturn& result) const;
    /// The operator() of those that write in one go.
    void flashInOneGo(FlashSEPFirmware::EnFlashType type, std::uint32_t chunkSize);

    Core::OperationReturn m_result;
    Common::shared_ptr<Core::Device> m_device;
    Common::string m_product;
    ImageSpan m_image;
    bool m_behindController;
    Schema::SEP* m_sep;
    Common::string m_uniqueId;  ///< a text of its own

  private:
    void pauseOrResume(bool pause);
};

/// Chunks by mode 7. Only its operator() writes: those who go step by step don't flash such a device.
class Mode7SEPFlashThreadable : public SEPFlashThreadable {
  public:
    using SEPFlashThreadable::SEPFlashThreadable;
    void operator()() override;
};

/// Chunks with their offsets by mode 14. As above, only its operator() writes.
class ModeESEPFlashThreadable : public SEPFlashThreadable {
  public:
    ModeESEPFlashThreadable(Common::shared_ptr<Core::Device> const& device, Common::string const& product,
                            ImageSpan image, bool behindController, std::uint32_t chunkSize)
        : SEPFlashThreadable(device, product, image, behindController), m_chunkSize(chunkSize) {}
    void operator()() override;

  private:
    std::uint32_t m_chunkSize;
};

}  // namespace Operations
