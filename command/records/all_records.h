#pragma once

// Every wire record, by family.

#include "command/records/controller_records.h"
#include "command/records/enclosure_records.h"
#include "command/records/encryption_records.h"
#include "command/records/inquiry_records.h"
#include "command/records/logical_drive_records.h"
#include "command/records/monitoring_records.h"
#include "command/records/payload_records.h"
#include "command/records/physical_drive_records.h"
#include "command/records/subsystem_records.h"

// Calls R(name) for each record; a record comes behind those it contains.
// clang-format off
#define KSL_WIRE_RECORDS(R) \
    KSL_CONTROLLER_RECORDS(R) \
    KSL_SUBSYSTEM_RECORDS(R) \
    KSL_PHYSICAL_DRIVE_RECORDS(R) \
    KSL_LOGICAL_DRIVE_RECORDS(R) \
    KSL_ENCLOSURE_RECORDS(R) \
    KSL_INQUIRY_RECORDS(R) \
    KSL_PAYLOAD_RECORDS(R) \
    KSL_MONITORING_RECORDS(R) \
    KSL_ENCRYPTION_RECORDS(R)
// clang-format on
