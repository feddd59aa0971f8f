#include "core/device_finder.h"
#include "core/tolkmod.h"
#include "storage/operations/publish.h"
#include "storage/operations/read_array_controller_info.h"
#include "storage/schema/array_controller.h"
#include "storage/vocabulary/array.h"
#include "storage/vocabulary/logical_drive.h"
#include "storage/vocabulary/physical_drive.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::ArrayController;
using namespace Interface::StorageMod;

struct Criterion {
    char const* attribute = nullptr;
    char const* value = nullptr;
};

/// What is counted: devices of a type that fit the criteria, by the text of their attributes.
struct CountRow {
    char const* count;
    char const* type;
    Criterion use = {};
    Criterion protection = {};
};

constexpr Criterion USED_FOR_DATA = {LogicalDrive::ATTR_NAME_LOGICAL_DRIVE_TYPE,
                                     LogicalDrive::ATTR_VALUE_LOGICAL_DRIVE_TYPE_DATA};

constexpr CountRow COUNTS[] = {
    {Names::ATTR_NAME_ARRAY_COUNT, Array::ATTR_VALUE_TYPE_ARRAY},
    {Names::ATTR_NAME_CACHE_ARRAY_COUNT,
     Array::ATTR_VALUE_TYPE_ARRAY,
     {Array::ATTR_NAME_ARRAY_TYPE, Array::ATTR_VALUE_ARRAY_TYPE_CACHE}},
    {Names::ATTR_NAME_DATA_LOGICAL_DRIVE_COUNT, LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE, USED_FOR_DATA},
    {Names::ATTR_NAME_CACHE_LOGICAL_DRIVE_COUNT,
     LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE,
     {LogicalDrive::ATTR_NAME_LOGICAL_DRIVE_TYPE, LogicalDrive::ATTR_VALUE_LOGICAL_DRIVE_TYPE_CACHE}},
    {Names::ATTR_NAME_ENCRYPTED_DATA_LOGICAL_DRIVE_COUNT,
     LogicalDrive::ATTR_VALUE_TYPE_LOGICAL_DRIVE,
     USED_FOR_DATA,
     {LogicalDrive::ATTR_NAME_LOGICAL_DRIVE_ENCRYPTION,
      LogicalDrive::ATTR_VALUE_LOGICAL_DRIVE_ENCRYPTION_TRUE}},
    {Names::ATTR_NAME_PHYSICAL_DRIVE_COUNT, PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE},
    {Names::ATTR_NAME_DATA_PHYSICAL_DRIVE_COUNT,
     PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE,
     {PhysicalDrive::ATTR_NAME_DRIVE_TYPE, PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_DATA}},
    {Names::ATTR_NAME_CACHE_PHYSICAL_DRIVE_COUNT,
     PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE,
     {PhysicalDrive::ATTR_NAME_DRIVE_TYPE, PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_CACHE}},
    {Names::ATTR_NAME_SPARE_PHYSICAL_DRIVE_COUNT,
     PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE,
     {PhysicalDrive::ATTR_NAME_DRIVE_TYPE, PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_SPARE}},
    {Names::ATTR_NAME_UNASSIGNED_PHYSICAL_DRIVE_COUNT,
     PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE,
     {PhysicalDrive::ATTR_NAME_DRIVE_TYPE, PhysicalDrive::ATTR_VALUE_DRIVE_TYPE_UNASSIGNED}},
    {Names::ATTR_NAME_ENCRYPTION_PHYSICAL_DRIVE_COUNT,
     PhysicalDrive::ATTR_VALUE_TYPE_PHYSICAL_DRIVE,
     {PhysicalDrive::ATTR_NAME_ENCRYPTION_ENCRYPTED_DRIVE,
      PhysicalDrive::ATTR_VALUE_ENCRYPTION_ENCRYPTED_DRIVE_TRUE}},
};

void restrict(Core::DeviceFinder& finder, Criterion const& criterion) {
    if (criterion.attribute != nullptr) {
        finder.AddAttribute(
            Common::pair<Common::string, Core::AttributeValue>(criterion.attribute, criterion.value));
    }
}

}  // namespace

void publishDriveTypeCounts(Schema::ArrayController& controller) {
    for (CountRow const& row : COUNTS) {
        Core::DeviceFinder finder(controller.getDevicePtr());
        restrict(finder, {Interface::TOLKMod::Device::ATTR_NAME_TYPE, row.type});
        restrict(finder, row.use);
        restrict(finder, row.protection);
        Common::list<Common::shared_ptr<Core::Device>> found;
        finder.find(found, Core::DeviceFinder::eDownward);
        publish(controller, row.count, decimalText(found.size()));
    }
}

}  // namespace Operations
