#pragma once

#include <string>

#include "common/shared_ptr.h"
#include "core/device.h"

/// Flashes the microcontroller of a drive's carrier from the row `tag` of the older configuration, after
/// asking unless silent. Nothing calls it, and that configuration stays empty in a run. 0 also when the user
/// declines; codeUnreadable without a row, for a simulated failure and for an unreadable image; codeRefused
/// when the device refuses or the image is empty; else what LogOperationReturn() says.
int flashTallyMarkPIC(Common::shared_ptr<Core::Device> const& drive, std::string const& tag);
