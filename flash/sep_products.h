#pragma once

#include <cstdint>
#include <span>

#include "common/shared_ptr.h"
#include "core/device.h"
#include "core/operation_return.h"

/// The models of enclosure processors, and what each needs of a flash. Looking one up isn't safe
/// from several threads at once: those that flash do it under a mutex of theirs.
namespace Operations {

// Product texts as inquiry data has them, sixteen characters.
inline constexpr char const* const PRODUCT_ID_ENCL_01 = "ENCL 01 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_02 = "ENCL 02 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_03 = "ENCL 03 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_04 = "ENCL 04 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_05 = "ENCL 05 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_06 = "ENCL 06 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_07 = "ENCL 07 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_08 = "ENCL 08 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_09 = "ENCL 09 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_10 = "ENCL 10 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_11 = "ENCL 11 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_12 = "ENCL 12 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_13 = "ENCL 13 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_14 = "ENCL 14 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_15 = "ENCL 15 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_16 = "ENCL 16 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_17 = "ENCL 17 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_18 = "ENCL 18 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_19 = "ENCL 19 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_20 = "ENCL 20 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_21 = "ENCL 21 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_22 = "ENCL 22 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_23 = "ENCL 23 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_24 = "ENCL 24 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_25 = "ENCL 25 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_26 = "ENCL 26 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_27 = "ENCL 27 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_28 = "ENCL 28 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_29 = "ENCL 29 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_30 = "ENCL 30 SEP     ";
inline constexpr char const* const PRODUCT_ID_ENCL_31 = "ENCL 31 SEP     ";
inline constexpr char const* const PRODUCT_ID_GENERIC_SEP = "GENERIC SEP     ";

/// How a model takes its firmware. The numbers are those of WRITE BUFFER's modes; MODE_EF is mode 14, and
/// mode 15 that makes the firmware run.
enum : std::uint8_t { MODE_7 = 7, MODE_E = 14, MODE_EF = 239 };

/// What a flash needs to know of a model. The values here serve a model that nobody knows.
struct FlashProductInfo {
    std::uint8_t flashMode = MODE_EF;
    std::uint32_t chunkSize = 4096;  ///< bytes that a WRITE BUFFER carries in MODE_E
    std::uint32_t resetWait = 20;    ///< milliseconds until it is back from a reset
    bool resetAfterFailure = false;  ///< a failed flash may be followed by the reset all the same
    std::int8_t onePerBox = -1;      ///< 1: one processor passes the firmware on to the others of its box
};

struct SepProduct {
    char const* product;
    FlashProductInfo info;
    float minimumFirmware;  ///< oldest revision that can be flashed; 0: any
    bool takesSRecords;     ///< in MODE_EF: the image is S-record text, sent by lines
    /// Most processors flashed at a time; 0: any number. Those that have a limit also need a while between
    /// their flash and their reset.
    std::uint16_t parallelLimit;
};

std::span<SepProduct const> sepProducts();
/// Null for a product that has no row.
SepProduct const* findSepProduct(Common::string const& product);

/// The product whose row serves the device: its own, or the generic one for a product without a row while
/// the process may flash any processor.
Common::string getFlashProductID(Common::shared_ptr<Core::Device> const& device);
bool checkIsSEPModelRegisteredForFlashing(Common::shared_ptr<Core::Device> const& device);
/// False when the firmware that the device runs is too old to be flashed.
bool checkSEPFWVersion(Common::shared_ptr<Core::Device> const& device);
/// Copies the row; leaves `info` as it is without one.
void lookupFlashInfo(Common::shared_ptr<Core::Device> const& device, FlashProductInfo& info);
bool checkIsSEPModelResetable(Common::shared_ptr<Core::Device> const& device);

/// Whether the reset may follow a flash with this result, which may be a list of results.
bool canPerformReset(FlashProductInfo const& info, Core::OperationReturn const& result);

}  // namespace Operations
