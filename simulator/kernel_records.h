#pragma once

/// The requests that a device node answers, with their records as a 64-bit kernel lays them out. Offsets:
///
///   SG_IO 0x2285 (sg_io_hdr version 3), 88 bytes        XQRTH_PASSTHRU 0xC058420B, 88 bytes
///     0  4  interface id, 'S'                             0  8  logical unit address
///     4  4  direction: -1 none -2 out -3 in -4 both       8  1  command block length
///     8  1  command block length                          9  1  type: request 0-2, attribute 3-5,
///     9  1  sense room                                          direction 6-7 (1 write, 2 read)
///    10  2  iovec count, 0                               10  2  time-out, seconds
///    12  4  data length                                  12 16  command block
///    16  8  data                                         28  1  SCSI status
///    24  8  command block                                29  1  sense length
///    32  8  sense                                        30  2  command status
///    40  4  time-out, milliseconds                       32 12  residual count, further information
///    64  1  status; 65 masked; 67 sense written          44 32  sense
///    68  2  host status; 70 driver status                76  2  data length; 80 8 data
///    72  4  residual; 76 4 duration; 80 4 info         XQRTH_BIG_PASSTHRU 0xC0604212, 96 bytes: the same to
///    76
///                                                        76  4  chunk size; 80 4 data length; 88 8 data
///
/// XQRTH_REGNEWD 0x420E has no record. CSMI's records are in csmi_records.h.

#include <cstdint>
#include <string>

#include "simulator/exchange.h"

namespace simulator {

enum class Request { ScsiGeneric, PassThrough, BigPassThrough, RegisterNewDisks, Csmi, Unknown };

/// The request of a number, of which a kernel looks at 32 bits.
Request requestOf(unsigned long number);
/// "SG_IO", "XQRTH_PASSTHRU", "CSMI PHY INFORMATION", "CSMI 0xCC770004", "unknown".
std::string requestName(unsigned long number);

/// The command in a record other than CSMI's. Returns 0, or the errno with which a kernel refuses the record
/// and why in `reason`.
int decodeRecord(Request request, void const* record, Command& command, std::string& reason);

/// Puts a reply's status, sense, residual count and data into the record and the buffers it points to.
void encodeReply(Request request, void* record, Command const& command, Reply const& reply);

}  // namespace simulator
