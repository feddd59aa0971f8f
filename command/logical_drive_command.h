#pragma once

#include "command/controller_command.h"

// Commands addressed to a logical drive by its number. A controller of at most 32 logical and 128 physical
// units is known to use the default records: nothing is probed there.
template <class T>
class LogicalDriveCommand : public BufferedCommand<T> {
    static_assert(T::addressed == EnAddressed::LogicalDrive, "this command goes to the controller");

  public:
    // From these limits on a controller may have longer records.
    static constexpr unsigned int LARGE_LOGICAL_UNITS = 33;
    static constexpr unsigned int LARGE_PHYSICAL_UNITS = 129;

    LogicalDriveCommand(Interface::SysMod::Command::EnTransferType transferType, std::uint16_t unit)
        : BufferedCommand<T>(transferType), m_unit(unit) {}

  protected:
    bool sendCommand(BMICDevice& device, Interface::SysMod::Command::BMICRequest& request) override {
        bool const isLarge = device.maxLogicalUnits() >= LARGE_LOGICAL_UNITS ||
                             device.maxPhysicalUnits() >= LARGE_PHYSICAL_UNITS;
        return this->sendBuffered(device, request, 0, m_unit, isLarge);
    }

  private:
    std::uint16_t m_unit;
};

template <class T>
class SenseLogicalDriveCommand : public LogicalDriveCommand<T> {
    static_assert(T::direction == EnDirection::In, "this command carries data out");

  public:
    explicit SenseLogicalDriveCommand(std::uint16_t unit)
        : LogicalDriveCommand<T>(Interface::SysMod::Command::EnTransferType::In, unit) {}

  protected:
    void PostProcessCommand() override { this->ProcessRecord(); }
};

template <class T>
class SetLogicalDriveCommand : public LogicalDriveCommand<T> {
    static_assert(T::direction == EnDirection::Out, "this command reads");

  public:
    explicit SetLogicalDriveCommand(std::uint16_t unit)
        : LogicalDriveCommand<T>(Interface::SysMod::Command::EnTransferType::Out, unit) {}

  protected:
    void PreProcessCommand() override { this->ProcessRecord(); }
};
