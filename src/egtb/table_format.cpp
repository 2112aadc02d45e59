// src/egtb/table_format.cpp - writing and checking the header of a table file.
#include "egtb/table_format.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

// Offsets of the header's fields, in bytes.
constexpr int VersionAt = 8;     // 2 bytes
constexpr int MetricAt = 10;     // 1
constexpr int SidesAt = 11;      // 1
constexpr int BlockBitsAt = 12;  // 1
constexpr int MaxPliesAt = 13;   // 1
constexpr int NameAt = 16;       // 16, padded with zeros
constexpr int NameSize = 16;
constexpr int PositionsAt = 32;       // 8
constexpr int BlockCountAt = 40;      // 4
constexpr int FileSizeAt = 44;        // 8
constexpr int IndexChecksumAt = 52;   // 4
constexpr int HeaderChecksumAt = 60;  // 4

std::uint32_t headerChecksum(const HeaderBytes& bytes) {
    return static_cast<std::uint32_t>(crc32(0, bytes.data(), HeaderChecksumAt));
}

}  // namespace

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
    const std::string name = header.material.name();
    std::copy(name.begin(), name.end(), bytes.begin() + NameAt);
    putLittleEndian(&bytes[PositionsAt], header.positionsPerSide, 8);
    putLittleEndian(&bytes[BlockCountAt], header.blockCount, 4);
    putLittleEndian(&bytes[FileSizeAt], header.fileSize, 8);
    putLittleEndian(&bytes[IndexChecksumAt], header.indexChecksum, 4);
    putLittleEndian(&bytes[HeaderChecksumAt], headerChecksum(bytes), 4);
    return bytes;
}

HeaderFault decodeHeader(const HeaderBytes& bytes, TableHeader& header) {
    if (std::memcmp(bytes.data(), TableMagic, sizeof(TableMagic)) != 0) return HeaderFault::Foreign;
    if (getLittleEndian(&bytes[VersionAt], 2) != TableVersion) return HeaderFault::OtherVersion;
    if (getLittleEndian(&bytes[HeaderChecksumAt], 4) != headerChecksum(bytes)) {
        return HeaderFault::Damaged;
    }
    if (bytes[MetricAt] != MetricPliesToMate) return HeaderFault::OtherVersion;
    const auto nameBegin = bytes.begin() + NameAt;
    const auto nameEnd = std::find(nameBegin, nameBegin + NameSize, 0);
    const std::string name(nameBegin, nameEnd);
    const std::optional<Material> material = parseMaterial(name);
    if (!material || material->name() != name) return HeaderFault::Damaged;
    const int blockBits = bytes[BlockBitsAt];
    if (blockBits < MinBlockBits || blockBits > MaxBlockBits) return HeaderFault::Damaged;
    // What follows from the material must be what the file says.
    header = makeHeader(*material, blockBits);
    if (header.sidesStored != bytes[SidesAt] ||
        header.positionsPerSide != getLittleEndian(&bytes[PositionsAt], 8) ||
        header.blockCount != getLittleEndian(&bytes[BlockCountAt], 4)) {
        return HeaderFault::Damaged;
    }
    header.maxPlies = bytes[MaxPliesAt];
    header.fileSize = getLittleEndian(&bytes[FileSizeAt], 8);
    header.indexChecksum = static_cast<std::uint32_t>(getLittleEndian(&bytes[IndexChecksumAt], 4));
    return HeaderFault::None;
}

}  // namespace vatro::egtb
