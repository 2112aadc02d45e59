// egtb/generator/value_stream.cpp - from words to the numbers of a file, and the choice of an
// order.
#include "egtb/generator/value_stream.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <vector>

#include "egtb/generator/parallel.h"

namespace vatro::egtb {
namespace {

// Measured with all endings of up to four pieces: level 9 saves 1.5% and takes three times as long.
constexpr int CompressionLevel = 6;
// Blocks that each order is judged by, and more for the best ones. Tuned: the choice costs 3% of
// the time of a table and is seldom 1% off.
constexpr std::uint64_t FirstSamples = 48;
constexpr std::uint64_t LastSamples = 192;
constexpr std::uint64_t Finalists = 3;

struct Candidate {
    DigitOrder order;
    std::uint64_t size = 0;  // of the compressed samples
};

/// The orders that keep the pawns before the other digits.
std::vector<Candidate> candidatesOf(const Material& material) {
    const PositionIndex index(material);
    std::vector<Candidate> candidates;
    for (unsigned byte = 0; byte < 256; ++byte) {
        DigitOrder order = plainOrder;
        if (!decodeOrder(static_cast<std::uint8_t>(byte), index.digitCount(), order)) continue;
        const auto pawnsEnd = order.begin() + index.pawnDigitCount();
        const bool hasPawnsFirst = std::all_of(order.begin(), pawnsEnd, [&](std::uint8_t name) {
            return name < index.pawnDigitCount();
        });
        if (hasPawnsFirst) candidates.push_back({order, 0});
    }
    return candidates;
}

/// The block of a sample. Multiples of the golden ratio spread evenly without keeping step with the
/// digits, as equal distances would.
std::uint64_t sampleOf(std::uint64_t sample, std::uint64_t blocks) {
    return ((sample * 0x9E3779B97F4A7C15ULL >> 32) * blocks) >> 32;
}

}  // namespace

ValueStream::ValueStream(const Ending& solved, const TableHeader& tableHeader)
    : layout(solved.wordLayout()),
      positionsPerSide(tableHeader.positionsPerSide),
      sides{
          Side{&solved.side(White), PositionIndex(tableHeader.material, tableHeader.order[White])},
          Side{&solved.side(Black),
               PositionIndex(tableHeader.material, tableHeader.order[Black])}} {
    for (Side& side : sides) {
        // Words number the same sets of men, in the plain order.
        std::uint64_t stride = 1;
        for (int name = side.index.digitCount() - 1; name >= 0; --name) {
            if (side.index.digit(name).isKings) continue;
            side.wordStride[name] = stride;
            stride *= side.index.digit(name).size;
        }
    }
}

void ValueStream::fill(std::uint64_t firstOffset, std::uint32_t count, std::uint8_t* codes) const {
    std::uint8_t latest = DrawCode;
    std::uint32_t unknownAtStart = count;
    for (std::uint32_t i = 0; i < count;) {
        const std::uint64_t offset = firstOffset + i;
        const bool isSecondHalf = offset >= positionsPerSide;
        const std::uint64_t number = offset - (isSecondHalf ? positionsPerSide : 0);
        const Side& side = sides[isSecondHalf];
        const SideToMove& known = *side.values;
        // 1. The digits at the start of a run of the last digit.
        std::uint64_t word = 0;
        std::uint64_t pair = 0;
        for (int name = 0; name < side.index.digitCount(); ++name) {
            const PositionIndex::Digit& digit = side.index.digit(name);
            const std::uint64_t value = number / digit.stride % digit.size;
            if (digit.isKings) pair = value;
            word += value * side.wordStride[name];
        }
        const int lastName = side.index.lastDigit();
        const PositionIndex::Digit& last = side.index.digit(lastName);
        const auto run = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(last.size - number % last.size, count - i));
        // 2. The run.
        const auto put = [&](std::uint64_t at, Square64 blackKing) {
            if (known.open[at] & maskOf(blackKing)) {
                latest = codeOfValue(known.values[at][blackKing]);
                unknownAtStart = std::min(unknownAtStart, i);
            }
            codes[i] = latest;
        };
        const std::uint32_t end = i + run;
        if (last.isKings) {
            for (; i < end; ++i, ++pair) {
                const auto& [white, black] = side.index.kingPair(pair);
                put(word + layout.kingPart(white), black);
            }
        } else {
            const auto& [white, black] = side.index.kingPair(pair);
            word += layout.kingPart(white);
            for (; i < end; ++i, word += side.wordStride[lastName]) {
                put(word, black);
            }
        }
    }
    if (unknownAtStart < count) std::fill(codes, codes + unknownAtStart, codes[unknownAtStart]);
}

DigitOrder cheapestOrder(const Ending& ending,
                         const Material& material,
                         Colour toMove,
                         std::uint32_t blockSize,
                         const Workers& workers) {
    const std::uint64_t positions = PositionIndex(material).size();
    const std::uint64_t blocks = (positions + blockSize - 1) / blockSize;
    std::vector<Candidate> candidates = candidatesOf(material);
    std::atomic<bool> hasMemory{true};
    // Adds the sizes of some sample blocks to those of the first candidates.
    const auto weigh = [&](std::uint64_t count, std::uint64_t firstSample, std::uint64_t samples) {
        std::vector<std::atomic<std::uint64_t>> sizes(count);
        parallelFor(workers, count * samples, 1, [&](std::uint64_t task, std::uint64_t) {
            Candidate& candidate = candidates[task / samples];
            const std::uint64_t first = sampleOf(firstSample + task % samples, blocks) * blockSize;
            const auto size =
                static_cast<std::uint32_t>(std::min<std::uint64_t>(blockSize, positions - first));
            TableHeader header = makeHeader(material, DefaultBlockBits);
            header.order[toMove] = candidate.order;
            std::uint8_t codes[1U << MaxBlockBits];
            std::uint8_t compressed[2U << MaxBlockBits];
            ValueStream(ending, header)
                .fill((toMove == White ? 0 : positions) + first, size, codes);
            uLongf length = sizeof(compressed);
            if (!compressBlock(codes, size, compressed, length)) hasMemory = false;
            sizes[task / samples] += length;
        });
        for (std::uint64_t i = 0; i < count; ++i) {
            candidates[i].size += sizes[i];
        }
        // Equally good ones keep their order, so that every run makes the same file.
        std::stable_sort(candidates.begin(),
                         candidates.begin() + static_cast<std::ptrdiff_t>(count),
                         [](const Candidate& a, const Candidate& b) { return a.size < b.size; });
    };
    // In small tables, fewer: the choice should not take longer than the writing.
    const std::uint64_t first = std::clamp<std::uint64_t>(blocks / 32, 4, FirstSamples);
    const std::uint64_t last = std::clamp<std::uint64_t>(blocks / 8, 8, LastSamples);
    weigh(candidates.size(), 0, first);
    weigh(std::min<std::uint64_t>(candidates.size(), Finalists), first, last);
    if (!hasMemory) throw std::bad_alloc();
    return candidates.front().order;
}

bool compressBlock(const std::uint8_t* codes,
                   std::uint32_t count,
                   std::uint8_t* to,
                   uLongf& length) {
    return compress2(to, &length, codes, count, CompressionLevel) == Z_OK;
}

}  // namespace vatro::egtb
