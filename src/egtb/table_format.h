// egtb/table_format.h - the layout of the table files; see docs/tablebase-format.md.
//
// All fields are little-endian. They are read byte by byte, so the machine's byte order is no
// matter.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "egtb/material.h"
#include "egtb/position_index.h"

namespace vatro::egtb {

inline constexpr char TableSuffix[] = ".gtb.cp4";

// The last byte is the end-of-file mark of DOS, where a text viewer stops.
inline constexpr char TableMagic[8] = {'V', 'a', 't', 'r', 'o', 'T', 'B', 26};
constexpr int TableVersion = 2;        // written
constexpr int OldestTableVersion = 1;  // still read: positions in the plain order
constexpr int MetricPliesToMate = 1;
constexpr int HeaderSize = 64;        // bytes
constexpr int IndexEntrySize = 8;     // bytes: compressed length and checksum of a block
constexpr int DefaultBlockBits = 13;  // measured: see the block sizes in the format document
constexpr int MinBlockBits = 10;      // limit of the format
constexpr int MaxBlockBits = 15;      // limit of the format; a reader's buffers rely on it

// The value code of a position: 0 for a draw, else the plies to mate plus 1. An odd number of plies
// is a win for the side to move, an even one a loss.
constexpr std::uint8_t DrawCode = 0;
constexpr int MaxPlies = 254;  // the longest mate that a byte holds
constexpr std::uint8_t codeOfPlies(int plies) { return static_cast<std::uint8_t>(plies + 1); }
constexpr int pliesOfCode(int code) { return code - 1; }
constexpr bool isWinCode(int code) { return code != DrawCode && (code & 1) == 0; }
constexpr bool isLossCode(int code) { return (code & 1) == 1; }

struct TableHeader {
    Material material;
    int sidesStored = 0;  // 1 when White to move stands for both, else 2
    int blockBits = DefaultBlockBits;
    std::array<DigitOrder, ColourCount> order{plainOrder, plainOrder};  // by side to move
    std::uint64_t positionsPerSide = 0;
    std::uint32_t blockCount = 0;
    int maxPlies = 0;  // of the longest mate; 0 when there is none
    std::uint64_t fileSize = 0;
    std::uint32_t indexChecksum = 0;

    std::uint64_t valueCount() const {
        return positionsPerSide * static_cast<std::uint64_t>(sidesStored);
    }
    std::uint32_t blockSize() const { return 1U << blockBits; }
};

using HeaderBytes = std::array<std::uint8_t, HeaderSize>;

/// The header of a table that stores `material` in blocks of 2^blockBits values, in the plain
/// order; file size, longest mate and index checksum are still to be filled in.
TableHeader makeHeader(const Material& material, int blockBits);

HeaderBytes encodeHeader(const TableHeader& header);

/// Why a file is not used.
enum class TableFault {
    None,
    CannotBeOpened,
    Foreign,       // written by another program
    NewerVersion,  // of the format, or another metric
    Damaged,       // or incomplete
};

/// Reads a header and checks that its fields agree with each other. `header` is set only when the
/// answer is None.
[[nodiscard]] TableFault decodeHeader(const HeaderBytes& bytes, TableHeader& header);

/// Reads an order as a header holds it: four names in a byte, the most significant digit in the
/// lowest bits. False when the byte does not name each of the digits once.
[[nodiscard]] bool decodeOrder(std::uint8_t byte, int digitCount, DigitOrder& order);

void putLittleEndian(std::uint8_t* to, std::uint64_t value, int byteCount);
std::uint64_t getLittleEndian(const std::uint8_t* from, int byteCount);

}  // namespace vatro::egtb
