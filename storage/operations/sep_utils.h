#pragma once

#include "core/device.h"

namespace Operations {

class SepUtils {
  public:
    static constexpr unsigned PRODUCT_ID_SIZE = 16;

    /// The product text of an enclosure processor as its inquiry data has it: sixteen characters, the text
    /// behind filled up with blanks; longer text is cut. Blanks alone for a device without one.
    static Common::string getProductId(Common::shared_ptr<Core::Device> const& device);
};

}  // namespace Operations
