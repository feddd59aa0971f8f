#pragma once

#include <span>

#include "common/string.h"

namespace Operations {

/// Where the versions of the parts of an enclosure stand.
enum class SubcomponentRoute {
    None,
    DiagnosticBlock,  ///< READ BUFFER, the block of the older enclosures
    SepRevision,      ///< the enclosure's revision in the SES configuration page
    Descriptors,      ///< the texts of the SES element descriptor page
};

/// One kind of enclosure processor.
struct SepModelRow {
    char const* product;  ///< sixteen characters, as in its inquiry data; unique
    char const* marketingName;
    char const* type;  ///< ATTR_VALUE_SEP_TYPE_..., for one that no box tells the type of
    SubcomponentRoute route;
};

std::span<SepModelRow const> sepModels();

/// The row of a product text (SepUtils::getProductId), or null.
SepModelRow const* findSepModel(Common::string const& product);

}  // namespace Operations
