#pragma once

/// The models of enclosure processors that the machine room knows, and how each takes firmware.

#include <cstdint>
#include <string_view>

namespace simulator {

enum class SepImage : std::uint8_t {
    Blocks,    ///< the image as it is, in chunks
    SRecords,  ///< the image as S-record text
};

struct SepModel {
    std::string_view product;  ///< without trailing blanks; also the family of its images
    SepImage image;
    /// WRITE BUFFER mode: 7, without offsets, runs at once; 14, with offsets, waits for mode 15.
    std::uint8_t mode;
    std::uint32_t chunk;   ///< bytes of every chunk but the last; 0 for S-records
    unsigned awaySeconds;  ///< how long a restart takes
    bool reachesBox;       ///< one image reaches all of this model in the box
};

/// The row of a product text; the last row, of any other make, when there is none.
SepModel const& findSepModel(std::string_view product);

/// Whether a processor of one product runs the other's firmware: it then goes by the other's name.
bool sepsSwap(std::string_view product, std::string_view family);

}  // namespace simulator
