#pragma once

/// Whether the machine runs offline: an outside process holds "/var/ksl/sc-offline.dat" locked.
bool IsLocked();
