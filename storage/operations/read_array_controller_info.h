#pragma once

#include "command/records/all_records.h"
#include "core/named_operation.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/operations.h"

namespace Operations {

/// Fills a controller with what its commands tell, and decides its status and state. Runs top-down, and once
/// more bottom-up for what depends on the devices behind the controller.
class ReadArrayControllerInfo
    : public Core::NamedOperation<Interface::StorageMod::OPERATION_READ_ARRAY_CONTROLLER_INFO,
                                  Core::DeviceOperation::eRead, Core::NullFilter,
                                  Schema::VisitorArrayController> {
  public:
    using NamedOperation::visit;
    ReadArrayControllerInfo() : NamedOperation(eUsualAndBottomUp) {}

    Core::OperationReturn visit(Schema::ArrayController& controller) override;
};

/// Whether discovery may have controllers rescan their buses. Not at the start: a rescan is a message that
/// changes what a controller does, and a discovery only reads.
class WriteBusRescanType {
  public:
    static bool isBusScanAllowed();
    static void allowBusScan(bool allowed);
};

/// The stages of filling a controller, each from one record.
void publishControllerAndHBAModeInfo(Schema::ArrayController& controller,
                                     Records::IDENTIFY_CONTROLLER const& identify);
void publishDisabledConfigInfo(Schema::ArrayController& controller,
                               Records::IDENTIFY_CONTROLLER const& identify);
void publishIdentifyInfo(Schema::ArrayController& controller, Records::IDENTIFY_CONTROLLER const& identify);
void publishSubsystemSystemInfo(Schema::ArrayController& controller,
                                Records::SUBSYSTEM_PARAMETERS const& subsystem);
void publishRedundantControllerParameters(Schema::ArrayController& controller,
                                          Records::REDUNDANT_CONTROLLER_PARAMETERS const& parameters);
/// `subsystem` tells the rest of the cache module.
void publishAcceleratorInfo(Schema::ArrayController& controller, Records::CACHE_CONFIG_STATUS const& cache,
                            Records::SUBSYSTEM_PARAMETERS const& subsystem);
void publishCacheSizeInfo(Schema::ArrayController& controller, Records::CACHE_CONFIG_STATUS const& cache,
                          Records::SUBSYSTEM_PARAMETERS const& subsystem);
/// `taskFlags` of the identify record, in host order: which of the priorities can be set.
void publishParameterInfo(Schema::ArrayController& controller,
                          Records::CONTROLLER_PARAMETERS const& parameters, unsigned short taskFlags);
void publishSurfaceStatusInfo(Schema::ArrayController& controller, Records::SURFACE_STATUS const& surface);
void publishMNPStatusInfo(Schema::ArrayController& controller, Records::MNP_STATUS const& status);
/// Counts of the arrays and drives behind the controller by their use.
void publishDriveTypeCounts(Schema::ArrayController& controller);

/// The stages that ask for more where the controller says that there is more to tell. What isn't answered
/// is left out, and is no failure of the operation.
void readEncryptionInfo(Schema::ArrayController& controller);
void readPowerInfo(Schema::ArrayController& controller);

}  // namespace Operations
