// egtb/generator/value_stream.h - the values of an ending in the order of its file.
#pragma once

#include <cstdint>

#include <zlib.h>

#include "egtb/generator/ending.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

class ValueStream {
  public:
    /// Both must outlive the stream.
    ValueStream(const Ending& solved, const TableHeader& tableHeader);

    /// Fills a block with codes. A number that stands for no legal position gets the code before
    /// it: no reader looks at it, and a longer run compresses better.
    void fill(std::uint64_t firstOffset, std::uint32_t count, std::uint8_t* codes) const;

  private:
    struct Side {
        const SideToMove* values;
        PositionIndex index;
        /// What one more of a digit of men adds to the number of a word.
        std::array<std::uint64_t, MaxDigits> wordStride{};
    };

    const WordLayout& layout;
    std::uint64_t positionsPerSide;
    std::array<Side, ColourCount> sides;
};

/// The order of digits in which a side to move compresses best, judged by blocks all over the
/// table. Pawns stay the most significant: they move least, so a search reads few blocks. Throws
/// std::bad_alloc.
DigitOrder cheapestOrder(const Ending& ending,
                         const Material& material,
                         Colour toMove,
                         std::uint32_t blockSize,
                         const Workers& workers);

/// Compresses a block into `to`, which has room for `length` bytes; sets `length` to those used.
/// False when there is no memory.
[[nodiscard]] bool compressBlock(const std::uint8_t* codes,
                                 std::uint32_t count,
                                 std::uint8_t* to,
                                 uLongf& length);

}  // namespace vatro::egtb
