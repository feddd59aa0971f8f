#pragma once

#include <cstdint>
#include <span>

#include "command/bmic_command.h"
#include "command/endian.h"
#include "command/self_sizing.h"
#include "common/copy_ptr.h"

// Commands addressed to a controller, one class per row of command/command_table.h:
//
//     SenseControllerCommand<IdentifyControllerTrait> identify;
//     if (DeviceCommandReturn::executeCommand(identify, device, result)) use(identify.record().dwBoardID);

// The buffer of a command over a trait's record, and access to it.
template <class T>
class BufferedCommand : public BmicCommand {
  public:
    using Record = typename T::Record;

    // The start of the buffer as the wire record. The buffer is never shorter, and zero where nothing came.
    Record const& record() const { return *reinterpret_cast<Record const*>(m_buffer.data()); }
    Record& record() { return *reinterpret_cast<Record*>(m_buffer.data()); }
    // A copy of the record for those who keep it.
    Common::copy_ptr<Record> recordCopy() const { return Common::copy_ptr<Record>(new Record(record())); }

    // All of the buffer, which a grown reply makes longer than the record. Offsets that a record names are
    // measured from its start; check them against size().
    std::span<unsigned char const> buffer() const { return {m_buffer.data(), m_buffer.length()}; }

    // Makes the buffer exactly `length` bytes long with a copy of `data` in it: a payload that isn't a whole
    // record. `data` of null gives zeros.
    void SetBuffer(unsigned char const* data, unsigned int length) { m_buffer.Assign(data, length); }

    // When not 0, stands in the command block's length field in place of the buffer's length: a number of
    // blocks, or another meaning that a command gives the field.
    void SetCdbLengthOverride(unsigned int cdbLengthOverride) { m_cdbLengthOverride = cdbLengthOverride; }

  protected:
    explicit BufferedCommand(Interface::SysMod::Command::EnTransferType transferType)
        : m_transferType(transferType), m_buffer(T::defaultSize) {}

    bool sendBuffered(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request,
                      std::uint32_t details, std::uint16_t unit, bool mayHaveGrown) {
        request.commandByte = T::commandByte;
        request.details = details;
        request.unit = unit;
        request.transferType = m_transferType;
        return sendSized(device, request, m_buffer,
                         {T::commandByte, T::defaultSize, T::totalLengthOffset, mayHaveGrown},
                         m_cdbLengthOverride);
    }

    // Turns the record's members between wire and host.
    void ProcessRecord() { T::ProcessBuffer(&record(), m_transferType); }

  private:
    Interface::SysMod::Command::EnTransferType m_transferType;
    unsigned int m_cdbLengthOverride = 0;
    ReplyBuffer m_buffer;
};

template <class T>
class ControllerCommand : public BufferedCommand<T> {
    static_assert(T::addressed == EnAddressed::Controller, "this command goes to a logical drive");

  public:
    explicit ControllerCommand(Interface::SysMod::Command::EnTransferType transferType)
        : BufferedCommand<T>(transferType) {}

    // Command block bytes 2 to 5, the most significant byte first.
    void SetDetails(std::uint32_t details) { m_details = details; }
    std::uint32_t details() const { return m_details; }
    // Command block byte 9.
    void SetUnitHigh(std::uint8_t unitHigh) { m_unitHigh = unitHigh; }

  protected:
    bool sendCommand(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request) override {
        return this->sendBuffered(device, request, m_details,
                                  static_cast<std::uint16_t>(m_unitHigh << 8 | m_unitLow), true);
    }

    // Command block byte 1: 0 but for commands that select a page by it.
    void SetUnitLow(std::uint8_t unitLow) { m_unitLow = unitLow; }

  private:
    std::uint32_t m_details = 0;
    std::uint8_t m_unitHigh = 0;
    std::uint8_t m_unitLow = 0;
};

// What a command writes can be read back with the same code.
template <class T>
inline constexpr bool isReadBack = false;
template <>
inline constexpr bool isReadBack<NVRAMPassThroughTrait> = true;

// Reads from the controller.
template <class T>
class SenseControllerCommand : public ControllerCommand<T> {
    static_assert(T::direction != EnDirection::Out || isReadBack<T>, "this command carries data out");

  public:
    SenseControllerCommand() : ControllerCommand<T>(Interface::SysMod::Command::EnTransferType::In) {}

  protected:
    void PostProcessCommand() override { this->ProcessRecord(); }
};

// Carries record() or SetBuffer()'s bytes to the controller. On a host of other byte order sending turns the
// record in place: fill it in again before sending it again.
template <class T>
class SetControllerCommand : public ControllerCommand<T> {
    static_assert(T::direction == EnDirection::Out, "this command carries no data out");

  public:
    SetControllerCommand() : ControllerCommand<T>(Interface::SysMod::Command::EnTransferType::Out) {}

  protected:
    void PreProcessCommand() override { this->ProcessRecord(); }
};

// Tells the controller to do something; no data.
template <class T>
class NoTransferControllerCommand : public ControllerCommand<T> {
    static_assert(T::direction == EnDirection::NoneOrIn, "this command carries data");

  public:
    NoTransferControllerCommand() : ControllerCommand<T>(Interface::SysMod::Command::EnTransferType::None) {}
};

// Asks the controller about the drive of a BMIC index: the low byte goes to command block byte 2, the high
// byte to byte 9. `swapForRemote`: a remote controller takes `details` in the other byte order; it is turned
// once, on the first send to a remote device, and not back by a retry.
template <class T, bool swapForRemote>
class SensePhysicalDriveCommand : public SenseControllerCommand<T> {
  public:
    explicit SensePhysicalDriveCommand(std::uint16_t bmicIndex) {
        this->SetDetails(static_cast<std::uint32_t>(bmicIndex & 0xFF) << 24);
        this->SetUnitHigh(static_cast<std::uint8_t>(bmicIndex >> 8));
    }

  protected:
    bool sendCommand(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request) override {
        if (!m_swapDone && device.isRemote()) {
            this->SetDetails(reverseBytes(this->details()));
            m_swapDone = true;
        }
        return SenseControllerCommand<T>::sendCommand(device, request);
    }

  private:
    bool m_swapDone = !swapForRemote;
};

using IdentifyPhysicalDrive = SensePhysicalDriveCommand<IdentifyPhysicalDriveTrait, true>;
using SenseMNPStatistics = SensePhysicalDriveCommand<SenseMNPStatisticsTrait, false>;

// The cache module's page of the cache configuration status: sizes, ratios and batteries of the cache.
class SenseControllerCacheConfigStatusBase
    : public SenseControllerCommand<SenseControllerCacheConfigStatusTrait> {
  public:
    static constexpr std::uint8_t CACHE_MODULE_PAGE = 1;

    SenseControllerCacheConfigStatusBase() { SetUnitLow(CACHE_MODULE_PAGE); }
};

class SetSSDCacheConfigBase : public SetControllerCommand<SetSSDCacheLUNTrait> {
  public:
    SetSSDCacheConfigBase() { SetUnitLow(SenseControllerCacheConfigStatusBase::CACHE_MODULE_PAGE); }
};
