#include "storage/operations/sep_utils.h"

#include "storage/vocabulary/sep.h"

namespace Operations {

Common::string SepUtils::getProductId(Common::shared_ptr<Core::Device> const& device) {
    Common::string product;
    if (device && device->hasAttribute(Interface::StorageMod::SEP::ATTR_NAME_PRODUCT_ID)) {
        product = device->getValueFor(Interface::StorageMod::SEP::ATTR_NAME_PRODUCT_ID);
    }
    product = product.substr(0, PRODUCT_ID_SIZE);
    while (product.size() < PRODUCT_ID_SIZE)
        product += " ";
    return product;
}

}  // namespace Operations
