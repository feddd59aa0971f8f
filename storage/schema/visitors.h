#pragma once

#include "core/operation_return.h"

/// The visitor interfaces of the storage device types. An operation states where it works by deriving from
/// the interfaces of the types that it supports.
namespace Schema {

class ModRoot;
class CachingManager;
class Array;
class ArrayController;
class DriveCage;
class LogicalDrive;
class PhysicalDrive;
class NonVaultlinePhysicalDrive;
class Expander;
class SEP;
class StorageEnclosure;
class HostBusAdapter;
class StorageVolume;

/// One typed visit, which a device of that type calls from its double dispatch.
template <typename Kind>
class KindVisitor {
  public:
    virtual ~KindVisitor() = default;
    virtual Core::OperationReturn visit(Kind& device) = 0;
};

class VisitorModRoot : public KindVisitor<ModRoot> {};
class VisitorCachingManager : public KindVisitor<CachingManager> {};
class VisitorArray : public KindVisitor<Array> {};
class VisitorArrayController : public KindVisitor<ArrayController> {};
class VisitorDriveCage : public KindVisitor<DriveCage> {};
class VisitorLogicalDrive : public KindVisitor<LogicalDrive> {};
class VisitorPhysicalDrive : public KindVisitor<PhysicalDrive> {};
class VisitorNonVaultlinePhysicalDrive : public KindVisitor<NonVaultlinePhysicalDrive> {};
class VisitorExpander : public KindVisitor<Expander> {};
class VisitorSEP : public KindVisitor<SEP> {};
class VisitorStorageEnclosure : public KindVisitor<StorageEnclosure> {};
class VisitorHostBusAdapter : public KindVisitor<HostBusAdapter> {};
class VisitorStorageVolume : public KindVisitor<StorageVolume> {};

}  // namespace Schema
