#pragma once

#include "core/operation_rows.h"
#include "core/tolkmod.h"
#include "storage/schema/visitors.h"
#include "storage/vocabulary/device_types.h"

namespace Schema {

class MirrorGroup;
class ParityGroup;
class RemoteVolume;

/// The type text of a device class, for the classes that operations work on.
template <class Kind>
inline constexpr char const* typeText = nullptr;

namespace Types = Interface::StorageMod;
template <>
inline constexpr char const* typeText<ModRoot> = Interface::TOLKMod::ModRoot::ATTR_VALUE_TYPE_MOD_ROOT;
template <>
inline constexpr char const* typeText<CachingManager> =
    Types::CachingManager::ATTR_VALUE_TYPE_CACHING_MANAGER;
template <>
inline constexpr char const* typeText<Array> = Types::Array::ATTR_VALUE_TYPE_ARRAY;
template <>
inline constexpr char const* typeText<ArrayController> =
    Types::ArrayController::ATTR_VALUE_TYPE_ARRAY_CONTROLLER;
template <>
inline constexpr char const* typeText<DriveCage> = Types::DriveCage::ATTR_VALUE_TYPE_DRIVE_CAGE;
template <>
inline constexpr char const* typeText<Expander> = Types::Expander::ATTR_VALUE_TYPE_EXPANDER;
template <>
inline constexpr char const* typeText<LogicalDrive> = Types::LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE;
template <>
inline constexpr char const* typeText<MirrorGroup> = Types::MirrorGroup::ATTR_VALUE_TYPE_MIRROR_GROUP;
template <>
inline constexpr char const* typeText<ParityGroup> = Types::ParityGroup::ATTR_VALUE_TYPE_PARITY_GROUP;
template <>
inline constexpr char const* typeText<PhysicalDrive> = Types::PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE;
template <>
inline constexpr char const* typeText<NonVaultlinePhysicalDrive> =
    Types::PhysicalDrive::ATTR_VALUE_TYPE_NON_VAULTLINE_PHYSICAL_DRIVE;
template <>
inline constexpr char const* typeText<SEP> = Types::SEP::ATTR_VALUE_TYPE_SEP;
template <>
inline constexpr char const* typeText<StorageEnclosure> =
    Types::StorageEnclosure::ATTR_VALUE_TYPE_STORAGE_ENCLOSURE;
template <>
inline constexpr char const* typeText<HostBusAdapter> = Types::HostBusAdapter::ATTR_VALUE_TYPE_HBA;
template <>
inline constexpr char const* typeText<StorageVolume> = Types::StorageVolume::ATTR_VALUE_TYPE_STORAGE_VOLUME;
template <>
inline constexpr char const* typeText<RemoteVolume> = Types::RemoteVolume::ATTR_VALUE_TYPE_REMOTE_VOLUME;

/// A row of a registration table, see core/operation_rows.h. Without a creator the operation isn't written
/// yet.
template <class Kind>
constexpr Core::OperationRow on(char const* operationName,
                                Core::DeviceOperationCreatorBase* (*creator)() = nullptr) {
    static_assert(typeText<Kind> != nullptr);
    return {typeText<Kind>, Core::operationsOf<Kind>, operationName, creator};
}

}  // namespace Schema
