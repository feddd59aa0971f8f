#include "src/controllerModel.h"

#include <gtest/gtest.h>

#include "storage/controller_models.h"

namespace {

TEST(ControllerModel, NamesLoseTheirPrefix) {
    struct Row {
        char const* name;
        char const* model;
    };
    static Row const rows[] = {
        {"ATTR_VALUE_CONTROLLER_NAME_DOGWOOD8I", "DOGWOOD8I"},
        {"ATTR_VALUE_CONTROLLER_NAME_BIRCH_H16I", "BIRCH H16I"},
        {"ATTR_VALUE_STORAGE_SYSTEM_NAME_ENCL_14_", "ENCL 14"},
        {"ATTR_VALUE_GENERIC", "GENERIC"},
        {"ATTR_VALUE_CONTROLLER_NAME_KITEWING_SAS", "ZenoS8c"},
        {"xKITEWINGx", "ZenoS8c"},
        {"NO_PREFIX", "NO PREFIX"},
        {"", ""},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.model, MakeEnclosureNameNice(row.name)) << row.name;
}

/// The look-up takes the first row that holds the text anywhere, so the rows' order must let every model be
/// found, by its name and by its model.
TEST(ControllerModel, EveryModelIsFoundByItsNameAndByItself) {
    for (auto const& row : Interface::StorageMod::controllerModels()) {
        EXPECT_EQ(row.model, mapContollerName(MakeEnclosureNameNice(row.nameConstant))) << row.nameConstant;
        EXPECT_EQ(row.model, mapContollerName(row.model)) << row.nameConstant;
    }
}

TEST(ControllerModel, TheFirstRowThatHoldsTheTextDecides) {
    struct Row {
        char const* text;
        char const* model;
    };
    static Row const rows[] = {
        {"TR80", "TR80"},       {"TR57", "TR57"},         {"TR57i", "TR57i"},   {"LD63i", "LD63i"},
        {"LD16i", "LD16i"},     {"ZenoS8c", "ZenoS8c"},   {"BIRCH8", "TR80"},   {"DOGWOOD8", "TR57"},
        {"DOGWOOD8I", "TR57i"}, {"BIRCH H4", "HB04"},     {"QBX FIR4", "QF41"}, {"BIRCH_H4", "BIRCH_H4"},
        {"GENERIC", "GENERIC"}, {"dogwood8", "dogwood8"}, {"", "TR10i"},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.model, mapContollerName(row.text)) << row.text;
}

TEST(ControllerModel, TheKeyIsTheIdentifierWithItsHalvesSwapped) {
    struct Row {
        char const* identifier;
        char const* key;
    };
    static Row const rows[] = {
        {"509358932", "33541E5C"},   // 0x1E5C3354
        {"4294967295", "FFFFFFFF"},  // all bits
        {"2309737967", "CDEF89AB"},  // 0x89ABCDEF
        {"65535", ""},               // four digits or fewer
        {"0", ""},
        {"", ""},
        {"none", ""},
    };
    for (Row const& row : rows)
        EXPECT_EQ(row.key, applicabilityKey(row.identifier)) << row.identifier;
}

}  // namespace
