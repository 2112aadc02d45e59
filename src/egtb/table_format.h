// src/egtb/table_format.h - the numbers of the table files; see docs/tablebase-format.md.
//
// All fields are little-endian and are read byte by byte, whatever the machine.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "egtb/material.h"

namespace vatro::egtb {

inline constexpr char TableSuffix[] = ".gtb.cp4";

// The last byte is an end-of-file mark, so that a text viewer stops there.
inline constexpr char TableMagic[8] = {'V', 'a', 't', 'r', 'o', 'T', 'B', 26};
constexpr int TableVersion = 1;
constexpr int MetricPliesToMate = 1;
constexpr int HeaderSize = 64;        // bytes
constexpr int IndexEntrySize = 8;     // bytes: compressed length, checksum
constexpr int DefaultBlockBits = 13;  // measured: see the table of sizes in the format document
constexpr int MinBlockBits = 10;
constexpr int MaxBlockBits = 15;  // bounds the buffers of a reading thread

/// Value of a position: 0 for a draw, else the plies to mate plus 1. An odd number of plies is a
/// win for the side to move, an even one a loss.
constexpr std::uint8_t DrawCode = 0;
constexpr int MaxPlies = 254;
constexpr std::uint8_t codeOfPlies(int plies) { return static_cast<std::uint8_t>(plies + 1); }
constexpr int pliesOfCode(int code) { return code - 1; }
constexpr bool isWinCode(int code) { return code != DrawCode && (code & 1) == 0; }
constexpr bool isLossCode(int code) { return (code & 1) == 1; }

struct TableHeader {
    Material material;
    int sidesStored = 0;  // 1 when White to move stands for both, else 2
    int blockBits = DefaultBlockBits;
    std::uint64_t positionsPerSide = 0;
    std::uint32_t blockCount = 0;
    int maxPlies = 0;  // of the longest mate
    std::uint64_t fileSize = 0;
    std::uint32_t indexChecksum = 0;

    std::uint64_t valueCount() const {
        return positionsPerSide * static_cast<std::uint64_t>(sidesStored);
    }
    std::uint32_t blockSize() const { return 1U << blockBits; }
};

using HeaderBytes = std::array<std::uint8_t, HeaderSize>;

/// The header of a table that stores `material` in blocks of 2^blockBits values; file size and
/// index checksum are still to be filled in.
TableHeader makeHeader(const Material& material, int blockBits);

HeaderBytes encodeHeader(const TableHeader& header);

enum class HeaderFault { None, Foreign, OtherVersion, Damaged };

/// Reads a header and checks that its fields agree with each other.
HeaderFault decodeHeader(const HeaderBytes& bytes, TableHeader& header);

void putLittleEndian(std::uint8_t* to, std::uint64_t value, int byteCount);
std::uint64_t getLittleEndian(const std::uint8_t* from, int byteCount);

}  // namespace vatro::egtb
