#include "flash/sep_products.h"

#include "common/conversion.h"
#include "common/map.h"
#include "flash/vocabulary.h"
#include "storage/capability_mask.h"
#include "storage/operations/sep_utils.h"
#include "storage/vocabulary/sep.h"

namespace Operations {
namespace {

using DevicePointer = Common::shared_ptr<Core::Device>;
namespace Results = Interface::TOLKMod::OperationReturn;

/// The generic product has no minimum at all, which is the same as 0.
constexpr float NO_MINIMUM = 0.0F;

// product, {mode, chunk size, reset wait, reset after failure, one per box}, minimum, S-records, limit
// clang-format off
constexpr SepProduct PRODUCTS[] = {
    {PRODUCT_ID_ENCL_01, {MODE_7, 0, 0, false, 1}, 1.0F, true, 0},
    {PRODUCT_ID_ENCL_02, {MODE_E, 4096, 0, false, 1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_03, {MODE_EF, 0, 135000, false, -1}, 1.2F, true, 0},
    {PRODUCT_ID_ENCL_04, {MODE_EF, 0, 135000, false, -1}, 1.2F, true, 0},
    {PRODUCT_ID_ENCL_05, {MODE_EF, 0, 135000, true, 1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_06, {MODE_EF, 0, 135000, true, 1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_07, {MODE_EF, 0, 255000, true, 1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_08, {MODE_EF, 0, 135000, true, 1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_09, {MODE_EF, 0, 135000, true, 1}, 1.2F, true, 0},
    {PRODUCT_ID_ENCL_10, {MODE_EF, 0, 135000, false, -1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_11, {MODE_EF, 0, 375000, false, -1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_12, {MODE_E, 256, 0, false, -1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_13, {MODE_EF, 0, 135000, false, -1}, 0.01F, false, 0},
    {PRODUCT_ID_ENCL_14, {MODE_E, 4096, 0, false, -1}, 0.02F, true, 0},
    {PRODUCT_ID_ENCL_15, {MODE_E, 4096, 0, false, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_16, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 8},
    {PRODUCT_ID_ENCL_17, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 8},
    {PRODUCT_ID_ENCL_18, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_19, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_20, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_21, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_22, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_23, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_24, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_25, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_26, {MODE_EF, 0, 135000, true, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_27, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 8},
    {PRODUCT_ID_ENCL_28, {MODE_EF, 0, 135000, false, -1}, 0.02F, false, 0},
    {PRODUCT_ID_ENCL_29, {MODE_EF, 0, 135000, false, -1}, 0.0F, false, 0},
    {PRODUCT_ID_ENCL_30, {MODE_EF, 0, 135000, false, -1}, 0.01F, false, 0},
    {PRODUCT_ID_ENCL_31, {MODE_EF, 0, 135000, false, -1}, 0.01F, false, 8},
    {PRODUCT_ID_GENERIC_SEP, {MODE_EF, 0, 135000, false, -1}, NO_MINIMUM, false, 0},
};
// clang-format on

using ProductMap = Common::map<Common::string, SepProduct const*>;

ProductMap const& productMap() {
    static ProductMap s_products;
    if (s_products.begin() == s_products.end()) {
        for (SepProduct const& row : PRODUCTS)
            s_products.insert({row.product, &row});
    }
    return s_products;
}

bool isFlashError(Core::OperationReturn const& result) {
    return result.hasAttributeAndIs(
        Results::ATTR_NAME_STATUS,
        Interface::FlashMod::OperationReturn::ATTR_VALUE_STATUS_DEVICE_FLASH_ERROR);
}

}  // namespace

std::span<SepProduct const> sepProducts() {
    return PRODUCTS;
}

SepProduct const* findSepProduct(Common::string const& product) {
    auto const found = productMap().find(product);
    return found != productMap().end() ? found->second : nullptr;
}

Common::string getFlashProductID(DevicePointer const& device) {
    Common::string const product = SepUtils::getProductId(device);
    if (findSepProduct(product) == nullptr &&
        Interface::StorageMod::globalCapabilityMask().m_EnableAnySEPFlash) {
        return PRODUCT_ID_GENERIC_SEP;
    }
    return product;
}

bool checkIsSEPModelRegisteredForFlashing(DevicePointer const& device) {
    return findSepProduct(getFlashProductID(device)) != nullptr;
}

bool checkSEPFWVersion(DevicePointer const& device) {
    SepProduct const* const row = findSepProduct(getFlashProductID(device));
    if (row == nullptr || row->minimumFirmware == 0.0F) return true;
    auto const revision = Conversion::toNumber<float>(
        device->getValueFor(Interface::StorageMod::SEP::ATTR_NAME_FIRMWARE_REVISION));
    return row->minimumFirmware <= revision;
}

void lookupFlashInfo(DevicePointer const& device, FlashProductInfo& info) {
    if (SepProduct const* const row = findSepProduct(getFlashProductID(device))) info = row->info;
}

bool checkIsSEPModelResetable(DevicePointer const& device) {
    FlashProductInfo info;
    lookupFlashInfo(device, info);
    return checkIsSEPModelRegisteredForFlashing(device) && checkSEPFWVersion(device) &&
           info.flashMode == MODE_EF;
}

bool canPerformReset(FlashProductInfo const& info, Core::OperationReturn const& result) {
    if (info.flashMode != MODE_EF) return false;
    if (result) return true;
    if (!info.resetAfterFailure) return false;
    if (!result.hasAttribute(Results::ATTR_NAME_OPERATION_RETURN_LIST)) return isFlashError(result);
    // One that succeeded among those that failed keeps all of them from being reset.
    Common::list<Core::OperationReturn> const returns =
        result.getPublicValueFor(Results::ATTR_NAME_OPERATION_RETURN_LIST);
    for (Core::OperationReturn const& one : returns) {
        if (!isFlashError(one)) return false;
    }
    return true;
}

}  // namespace Operations
