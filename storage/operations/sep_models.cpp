#include "storage/operations/sep_models.h"

#include "storage/vocabulary/sep.h"

namespace Operations {
namespace {

namespace Names = Interface::StorageMod::SEP;
using Route = SubcomponentRoute;

// clang-format off
constexpr SepModelRow s_SEPMarketingNameList[] = {
    {"ENCL 01 SEP     ", "VaultStack 10 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::None},
    {"ENCL 02 SEP     ", "VaultStack 12 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::None},
    {"ENCL 03 SEP     ", "VaultStack 60 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::DiagnosticBlock},
    {"ENCL 04 SEP     ", "VaultStack 60 G2 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::DiagnosticBlock},
    {"ENCL 05 SEP     ", "VaultStack D12 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 06 SEP     ", "VaultStack D12 G2 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 07 SEP     ", "VaultStack D25 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 08 SEP     ", "VaultStack D25 G2 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 09 SEP     ", "VaultStack 70 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::SepRevision},
    {"ENCL 10 SEP     ", "VaultBlade Drive Shelf Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::None},
    {"ENCL 11 SEP     ", "VaultStack D60 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 12 SEP     ", "Vaultline Expansion Card", Names::ATTR_VALUE_SEP_TYPE_EXPANDER_CARD, Route::None},
    {"ENCL 13 SEP     ", "Vaultline 12G Expansion Card", Names::ATTR_VALUE_SEP_TYPE_EXPANDER_CARD, Route::None},
    {"ENCL 14 SEP     ", "VaultBlade SAS Switch", Names::ATTR_VALUE_SEP_TYPE_SAS_SWITCH, Route::None},
    {"ENCL 15 SEP     ", "VaultBlade 6G SAS Switch", Names::ATTR_VALUE_SEP_TYPE_SAS_SWITCH, Route::None},
    {"ENCL 16 SEP     ", "VaultStack D3600 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 17 SEP     ", "VaultStack D3700 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_STORAGE_ENCLOSURE, Route::Descriptors},
    {"ENCL 18 SEP     ", "8 Bay Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 19 SEP     ", "12 Bay Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 20 SEP     ", "8 Bay 12G Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 21 SEP     ", "12 Bay 12G Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 22 SEP     ", "24 Bay 12G Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 23 SEP     ", "2 Bay Rear Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 24 SEP     ", "3 Bay Rear Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 25 SEP     ", "4 Bay Mid Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 26 SEP     ", "6 Bay Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 27 SEP     ", "VaultStack D6000 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_ZONED_ENCLOSURE, Route::Descriptors},
    {"ENCL 28 SEP     ", "8 Bay Premium Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 29 SEP     ", "10 Bay Premium Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 30 SEP     ", "24 Bay Premium Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"ENCL 31 SEP     ", "VaultStack D8000 Enclosure Processor", Names::ATTR_VALUE_SEP_TYPE_ZONED_ENCLOSURE, Route::Descriptors},
    {"510027 EvBd 255 ", "Internal Evaluation Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
    {"510028 EvBd 255 ", "External Evaluation Backplane", Names::ATTR_VALUE_SEP_TYPE_DRIVE_BACKPLANE, Route::None},
};
// clang-format on

}  // namespace

std::span<SepModelRow const> sepModels() {
    return s_SEPMarketingNameList;
}

SepModelRow const* findSepModel(Common::string const& product) {
    for (SepModelRow const& row : s_SEPMarketingNameList) {
        if (product == row.product) return &row;
    }
    return nullptr;
}

}  // namespace Operations
