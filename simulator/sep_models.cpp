#include "simulator/sep_models.h"

#include <algorithm>
#include <iterator>

namespace simulator {

namespace {

constexpr SepImage BLOCKS = SepImage::Blocks;
constexpr SepImage RECORDS = SepImage::SRecords;

// Every model is back some seconds before the time that its maker tells to wait.
constexpr SepModel MODELS[] = {
    {"ENCL 01 SEP", BLOCKS, 7, 4096, 0, true},     {"ENCL 02 SEP", BLOCKS, 14, 4096, 0, true},
    {"ENCL 03 SEP", RECORDS, 14, 0, 120, false},   {"ENCL 04 SEP", RECORDS, 14, 0, 120, false},
    {"ENCL 05 SEP", BLOCKS, 14, 4096, 120, true},  {"ENCL 06 SEP", BLOCKS, 14, 4096, 120, true},
    {"ENCL 07 SEP", RECORDS, 14, 0, 240, true},    {"ENCL 08 SEP", RECORDS, 14, 0, 120, true},
    {"ENCL 09 SEP", RECORDS, 14, 0, 120, true},    {"ENCL 10 SEP", RECORDS, 14, 0, 120, false},
    {"ENCL 11 SEP", RECORDS, 14, 0, 360, false},   {"ENCL 12 SEP", BLOCKS, 14, 256, 0, false},
    {"ENCL 13 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 14 SEP", BLOCKS, 14, 4096, 0, false},
    {"ENCL 15 SEP", BLOCKS, 14, 4096, 0, false},   {"ENCL 16 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 17 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 18 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 19 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 20 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 21 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 22 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 23 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 24 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 25 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 26 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 27 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 28 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 29 SEP", BLOCKS, 14, 4096, 120, false}, {"ENCL 30 SEP", BLOCKS, 14, 4096, 120, false},
    {"ENCL 31 SEP", BLOCKS, 14, 4096, 120, false}, {"GENERIC SEP", BLOCKS, 14, 4096, 120, false},
};

}  // namespace

SepModel const& findSepModel(std::string_view product) {
    auto const* const row = std::find_if(std::begin(MODELS), std::end(MODELS) - 1,
                                         [&](SepModel const& each) { return each.product == product; });
    return *row;
}

bool sepsSwap(std::string_view product, std::string_view family) {
    auto const isOne = [](std::string_view text) { return text == "ENCL 05 SEP" || text == "ENCL 06 SEP"; };
    return isOne(product) && isOne(family);
}

}  // namespace simulator
