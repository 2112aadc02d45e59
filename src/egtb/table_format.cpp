// egtb/table_format.cpp - writing and checking the header of a table file.
#include "egtb/table_format.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

// Offsets of the header's fields, with their sizes in bytes.
constexpr int VersionAt = 8;     // 2
constexpr int MetricAt = 10;     // 1
constexpr int SidesAt = 11;      // 1
constexpr int BlockBitsAt = 12;  // 1
constexpr int MaxPliesAt = 13;   // 1
constexpr int OrdersAt = 14;     // 1 for each side to move
constexpr int NameAt = 16;       // 16, padded with zeros
constexpr int NameSize = 16;
constexpr int PositionsAt = 32;       // 8
constexpr int BlockCountAt = 40;      // 4
constexpr int FileSizeAt = 44;        // 8
constexpr int IndexChecksumAt = 52;   // 4
constexpr int HeaderChecksumAt = 60;  // 4

constexpr int BitsPerDigit = 2;
static_assert(MaxDigits == 1 << BitsPerDigit && MaxDigits * BitsPerDigit == 8);

/// The opposite of decodeOrder.
std::uint8_t encodeOrder(const DigitOrder& order, int digitCount) {
    unsigned byte = 0;
    for (int place = 0; place < digitCount; ++place) {
        byte |= unsigned{order[place]} << (BitsPerDigit * place);
    }
    return static_cast<std::uint8_t>(byte);
}

std::uint32_t headerChecksum(const HeaderBytes& bytes) {
    return static_cast<std::uint32_t>(crc32(0, bytes.data(), HeaderChecksumAt));
}

}  // namespace

bool decodeOrder(std::uint8_t byte, int digitCount, DigitOrder& order) {
    unsigned seen = 0;
    for (int place = 0; place < digitCount; ++place) {
        order[place] = (byte >> (BitsPerDigit * place)) & (MaxDigits - 1);
        seen |= 1U << order[place];
    }
    return seen == (1U << digitCount) - 1 && encodeOrder(order, digitCount) == byte;
}

void putLittleEndian(std::uint8_t* to, std::uint64_t value, int byteCount) {
    for (int i = 0; i < byteCount; ++i) {
        to[i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

std::uint64_t getLittleEndian(const std::uint8_t* from, int byteCount) {
    std::uint64_t value = 0;
    for (int i = 0; i < byteCount; ++i) {
        value |= std::uint64_t{from[i]} << (8 * i);
    }
    return value;
}

TableHeader makeHeader(const Material& material, int blockBits) {
    TableHeader header;
    header.material = material;
    header.sidesStored = material.isSymmetric() ? 1 : 2;
    header.blockBits = blockBits;
    header.positionsPerSide = PositionIndex(material).size();
    header.blockCount = static_cast<std::uint32_t>((header.valueCount() + header.blockSize() - 1) >>
                                                   header.blockBits);
    return header;
}

HeaderBytes encodeHeader(const TableHeader& header) {
    HeaderBytes bytes{};
    std::memcpy(bytes.data(), TableMagic, sizeof(TableMagic));
    putLittleEndian(&bytes[VersionAt], TableVersion, 2);
    bytes[MetricAt] = MetricPliesToMate;
    bytes[SidesAt] = static_cast<std::uint8_t>(header.sidesStored);
    bytes[BlockBitsAt] = static_cast<std::uint8_t>(header.blockBits);
    bytes[MaxPliesAt] = static_cast<std::uint8_t>(header.maxPlies);
    const int digitCount = PositionIndex(header.material).digitCount();
    for (int side = 0; side < header.sidesStored; ++side) {
        bytes[OrdersAt + side] = encodeOrder(header.order[side], digitCount);
    }
    const std::string name = header.material.name();
    std::copy(name.begin(), name.end(), bytes.begin() + NameAt);
    putLittleEndian(&bytes[PositionsAt], header.positionsPerSide, 8);
    putLittleEndian(&bytes[BlockCountAt], header.blockCount, 4);
    putLittleEndian(&bytes[FileSizeAt], header.fileSize, 8);
    putLittleEndian(&bytes[IndexChecksumAt], header.indexChecksum, 4);
    putLittleEndian(&bytes[HeaderChecksumAt], headerChecksum(bytes), 4);
    return bytes;
}

TableFault decodeHeader(const HeaderBytes& bytes, TableHeader& header) {
    if (std::memcmp(bytes.data(), TableMagic, sizeof(TableMagic)) != 0) return TableFault::Foreign;
    const std::uint64_t version = getLittleEndian(&bytes[VersionAt], 2);
    if (version > TableVersion) return TableFault::NewerVersion;
    if (version < OldestTableVersion) return TableFault::Damaged;
    if (getLittleEndian(&bytes[HeaderChecksumAt], 4) != headerChecksum(bytes)) {
        return TableFault::Damaged;
    }
    if (bytes[MetricAt] != MetricPliesToMate) return TableFault::NewerVersion;
    const auto nameBegin = bytes.begin() + NameAt;
    const auto nameEnd = std::find(nameBegin, nameBegin + NameSize, 0);
    const std::string name(nameBegin, nameEnd);
    const std::optional<Material> material = parseMaterial(name);
    if (!material || material->name() != name) return TableFault::Damaged;
    const int blockBits = bytes[BlockBitsAt];
    if (blockBits < MinBlockBits || blockBits > MaxBlockBits) return TableFault::Damaged;
    // Sides, positions and blocks follow from the material: the file must agree.
    TableHeader expected = makeHeader(*material, blockBits);
    if (expected.sidesStored != bytes[SidesAt] ||
        expected.positionsPerSide != getLittleEndian(&bytes[PositionsAt], 8) ||
        expected.blockCount != getLittleEndian(&bytes[BlockCountAt], 4)) {
        return TableFault::Damaged;
    }
    const int digitCount = PositionIndex(*material).digitCount();
    for (int side = 0; side < ColourCount; ++side) {
        const std::uint8_t byte = bytes[OrdersAt + side];
        const bool isUsed = version > OldestTableVersion && side < expected.sidesStored;
        if (isUsed ? !decodeOrder(byte, digitCount, expected.order[side]) : byte != 0) {
            return TableFault::Damaged;
        }
    }
    expected.maxPlies = bytes[MaxPliesAt];
    expected.fileSize = getLittleEndian(&bytes[FileSizeAt], 8);
    expected.indexChecksum =
        static_cast<std::uint32_t>(getLittleEndian(&bytes[IndexChecksumAt], 4));
    header = expected;
    return TableFault::None;
}

}  // namespace vatro::egtb
