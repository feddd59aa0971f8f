#pragma once

#include <string>
#include <vector>

#include "common/shared_ptr.h"
#include "core/device.h"

/// The enclosure processors, by WWID, that the run has taken on for flashing. Lives to the end of the
/// process: a processor that is reached over two paths is flashed once.
extern std::vector<std::string> gblWwIdList;

/// Flashes every enclosure processor of one product behind a controller or host adapter. `tag` is the product
/// id, padded with blanks to 16 characters. 0 also when there was nothing to do: no catalogue entry, a
/// product that can't be flashed behind zoning, or processors that were taken on before. codeUnreadable when
/// the image can't be read, codeRefused when the device has no such operation, else what LogOperationReturn()
/// says.
int FlashSEP(Common::shared_ptr<Core::Device> const& controller, std::string const& tag);
