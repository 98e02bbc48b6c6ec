// The simulated printer's decoder of raw job data. A job is a sequence of blocks, each opening
// with the command start marker and a command byte:
//
//   0x0F  logo: number (1..40), width / 8 (1..72), height / 8 (>= 1), raster of
//         width * height / 8 bytes, 0xFF                                       -> area 1
//   0x10  message: number (1..25), START, 0x00, text bytes up to the next START, which must be
//         followed by 0x11 (message end)                                       -> area 2
//   0x12  single-byte characters: station (0x01 thermal, 0x05 impact), first code, last code,
//         then one glyph per code. The glyph length comes from the size header (width, height
//         in dots) that the same job sent before with 0x16 0x02 (thermal) or 0x16 0x04
//         (impact): thermal glyphs are rows, ceil(width / 8) * height bytes; impact glyphs are
//         columns, width * ceil(height / 8) bytes (24 x 24 gives 72, 16 x 16 gives 32). A
//         character without a header in the same job is refused.  -> area 4 / area 3
//   0x14  double-byte group: station (0x00 thermal, 0x01 impact), count (1..255), per
//         character lead byte, second byte and 72 (thermal) or 32 (impact) glyph bytes
//                                                                   -> area 6 / area 7
//   0x16  setting p1 p2 p3: p1 0x10 sets the printer setup at once; 0x02 / 0x04 are the
//         single-byte size headers; 0x50 is the code page (p2 low, p3 high byte); every
//         setting is kept, the latest per p1
//   0x05 / 0x07   restart after a headered font download (0x05 serial port, 0x07 other)
//   0x78 / 0x79 / 0x7A + u32 LE   reset (0x7A only on a serial port)
//   0x6B  firmware: the file's bytes up to the closing START, which is the first START that
//         ends the data or is followed directly by another START. The file's first line
//         "EcLevel <hex>" gives the new firmware level; "BootLevel <hex>" must be non-zero and
//         "DevType <hex>" must match the model's family (1: models 1, 3, 4, 5; 2: models 2,
//         7; 3: models 8, 9)
//   0x00  end
//
// Several jobs may arrive back to back (a port file collects them); the blocks delimit
// themselves. Anything else is broken framing: a wrong marker, a truncated block, counts that
// do not match what follows (seen as a missing marker or end byte), an unknown command, or
// values out of range. Decoding stops at the first fault; what was decoded before it stays
// stored. Downloads into the flash areas are refused while the flash is write-protected
// (setup byte 2 & 0xC0); settings, resets and firmware are not. A disconnected printer
// takes nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/bytes.h"
#include "sim/sim_state.h"

namespace kx20::sim {

struct JobBlock {
    std::uint8_t command = 0;
    std::size_t offset = 0;  // of the block's marker
};

struct JobResult {
    bool accepted = true;
    std::uint32_t error = kOk;  // kErrInvalidData, kErrWriteProtect, kErrNotReady, ...
    std::size_t errorOffset = 0;
    std::u16string reason;
    std::vector<JobBlock> blocks;  // the blocks decoded and applied, in order
};

JobResult ReceiveJob(PrinterState& state, ByteSpan job);

}  // namespace kx20::sim
