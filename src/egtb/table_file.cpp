// src/egtb/table_file.cpp - opening, checking and reading table files.
//
// Nothing in a file is trusted before its checksum: a length that does not fit ends the reading.
#include "egtb/table_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <zlib.h>

namespace vatro::egtb {
namespace {

constexpr std::uint32_t MostCompressed = (1U << MaxBlockBits) + 1024;  // compressBound and more

bool readFully(int descriptor, std::uint64_t at, std::uint8_t* to, std::size_t size) {
    while (size > 0) {
        const ssize_t got = pread(descriptor, to, size, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        to += got;
        at += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

}  // namespace

std::unique_ptr<TableFile> TableFile::open(const std::string& path,
                                           std::string& fault,
                                           bool& isForeign) {
    // Without O_NONBLOCK a pipe of this name would block the engine.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        isForeign = false;
        fault = std::string("cannot be opened: ") + std::strerror(errno);
        return nullptr;
    }
    return adopt(descriptor, fault, isForeign);
}

std::unique_ptr<TableFile> TableFile::adopt(int descriptor, std::string& fault, bool& isForeign) {
    isForeign = false;
    struct stat status {};
    HeaderBytes bytes;
    const bool isRead = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                        readFully(descriptor, 0, bytes.data(), bytes.size());
    TableHeader header;
    // Too short for a header is too short to tell who wrote it: it may not be overwritten either.
    const HeaderFault found = isRead ? decodeHeader(bytes, header) : HeaderFault::Foreign;
    if (found == HeaderFault::None) {
        std::unique_ptr<TableFile> table(new TableFile(descriptor, header));
        if (table->readIndex(static_cast<std::uint64_t>(status.st_size))) return table;
        fault = "is damaged or incomplete";
        return nullptr;
    }
    close(descriptor);
    isForeign = found == HeaderFault::Foreign;
    fault = isForeign                            ? "is not a table of this program"
            : found == HeaderFault::OtherVersion ? "has another version of the format"
                                                 : "is damaged";
    return nullptr;
}

TableFile::TableFile(int openDescriptor, const TableHeader& header)
    : descriptor(openDescriptor), fields(header), positionIndex(header.material) {}

TableFile::~TableFile() { close(descriptor); }

bool TableFile::readIndex(std::uint64_t actualSize) {
    const std::uint64_t indexSize = std::uint64_t{fields.blockCount} * IndexEntrySize;
    if (fields.fileSize != actualSize || actualSize < HeaderSize + indexSize) return false;
    std::vector<std::uint8_t> bytes(indexSize);
    if (!readFully(descriptor, HeaderSize, bytes.data(), bytes.size())) return false;
    // The index of the largest ending is below 2^20 bytes: one call sums it.
    const auto checksum = crc32(0, bytes.data(), static_cast<uInt>(bytes.size()));
    if (checksum != fields.indexChecksum) return false;
    blockStarts.reserve(fields.blockCount + std::size_t{1});
    blockChecksums.reserve(fields.blockCount);
    std::uint64_t start = HeaderSize + indexSize;
    for (std::uint32_t block = 0; block < fields.blockCount; ++block) {
        const std::uint8_t* entry = &bytes[std::size_t{block} * IndexEntrySize];
        const std::uint64_t length = getLittleEndian(entry, 4);
        if (length > MostCompressed) return false;
        blockStarts.push_back(start);
        blockChecksums.push_back(static_cast<std::uint32_t>(getLittleEndian(entry + 4, 4)));
        start += length;
    }
    blockStarts.push_back(start);
    return start == actualSize;
}

std::uint64_t TableFile::offsetOf(const Position& position, bool isSwapped) const {
    // One stored side to move stands for the other with the colours swapped.
    if (fields.sidesStored == 1) isSwapped = position.sideToMove == Black;
    const bool isSecondHalf = (position.sideToMove == Black) != isSwapped;
    return positionIndex.encode(isSwapped ? position.withColoursSwapped() : position) +
           (isSecondHalf ? fields.positionsPerSide : 0);
}

std::uint32_t TableFile::valuesInBlock(std::uint32_t block) const {
    const std::uint64_t first = std::uint64_t{block} << fields.blockBits;
    const std::uint64_t left = fields.valueCount() - first;
    return left < fields.blockSize() ? static_cast<std::uint32_t>(left) : fields.blockSize();
}

bool TableFile::readBlock(std::uint32_t block, std::uint8_t* values) const {
    if (isBroken()) return false;
    if (inflateBlock(block, values)) return true;
    broken.store(true, std::memory_order_relaxed);
    return false;
}

bool TableFile::inflateBlock(std::uint32_t block, std::uint8_t* values) const {
    std::uint8_t compressed[MostCompressed];
    const auto length = static_cast<std::size_t>(blockStarts[block + 1] - blockStarts[block]);
    if (!readFully(descriptor, blockStarts[block], compressed, length)) return false;
    if (crc32(0, compressed, static_cast<uInt>(length)) != blockChecksums[block]) return false;
    const std::uint32_t expected = valuesInBlock(block);
    uLongf written = expected;
    const int result = uncompress(values, &written, compressed, static_cast<uLong>(length));
    return result == Z_OK && written == expected;
}

}  // namespace vatro::egtb
