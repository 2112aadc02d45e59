// egtb/table_file.cpp - opening, checking and reading table files.
//
// A file may hold anything: every checksum and every length is checked before it is used.
#include "egtb/table_file.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <zlib.h>

namespace vatro::egtb {
namespace {

// No block that zlib makes is longer: compressBound adds less than 1024 bytes to such a block.
constexpr std::uint32_t MostCompressed = (1U << MaxBlockBits) + 1024;

/// Memory for zlib, so that it cannot run out of it: it asks for its state and, at most, for a
/// window of 32 KB.
struct InflateMemory {
    alignas(16) std::uint8_t bytes[48 << 10];
    std::size_t used = 0;

    static void* allocate(void* self, unsigned count, unsigned size) {
        auto& memory = *static_cast<InflateMemory*>(self);
        const std::size_t wanted = (std::size_t{count} * size + 15) & ~std::size_t{15};
        if (wanted > sizeof(memory.bytes) - memory.used) return nullptr;
        void* const block = memory.bytes + memory.used;
        memory.used += wanted;
        return block;
    }
    static void release(void*, void*) {}
};

/// Inflates a block of exactly `expected` values.
bool inflateInto(std::uint8_t* values,
                 std::uint32_t expected,
                 std::uint8_t* compressed,
                 std::size_t length) {
    InflateMemory memory;
    z_stream stream{};
    stream.zalloc = InflateMemory::allocate;
    stream.zfree = InflateMemory::release;
    stream.opaque = &memory;
    stream.next_in = compressed;
    stream.avail_in = static_cast<uInt>(length);
    if (inflateInit(&stream) != Z_OK) return false;
    stream.next_out = values;
    stream.avail_out = expected;
    const int result = inflate(&stream, Z_FINISH);
    const bool isWhole = result == Z_STREAM_END && stream.avail_out == 0 && stream.avail_in == 0;
    inflateEnd(&stream);
    return isWhole;
}

}  // namespace

std::string OpenedTable::faultText() const {
    switch (fault) {
        case TableFault::CannotBeOpened:
            return std::string("cannot be opened: ") + std::strerror(systemError);
        case TableFault::Foreign:
            return "is not a table of this program";
        case TableFault::NewerVersion:
            return "has a newer format than this program knows";
        case TableFault::Damaged:
            return "is damaged or incomplete";
        case TableFault::None:
            break;
    }
    return {};
}

std::string OpenedTable::advice() const {
    switch (fault) {
        case TableFault::CannotBeOpened:
            return systemError == ENOENT ? "make it first" : "make it readable";
        case TableFault::Foreign:
            return "move it away to have one made";
        case TableFault::NewerVersion:
            return "update Vatro, or move the file away";
        case TableFault::Damaged:
            return "make it again with vatro-tbgen";
        case TableFault::None:
            break;
    }
    return {};
}

OpenedTable TableFile::openAndReadHeader(const File& file, TableHeader& header) {
    if (!file.isOpen()) return {nullptr, TableFault::CannotBeOpened, errno};
    const auto size = file.size();
    HeaderBytes bytes;
    if (!size || !file.readAt(0, bytes.data(), bytes.size())) {
        // A file too short for a header does not show who wrote it, so it counts as foreign; but
        // nobody misses an empty one.
        return {nullptr, size == 0U ? TableFault::Damaged : TableFault::Foreign, 0};
    }
    const TableFault fault = decodeHeader(bytes, header);
    if (fault != TableFault::None) return {nullptr, fault, 0};
    const bool isWhole = header.fileSize == *size;
    return {nullptr, isWhole ? TableFault::None : TableFault::Damaged, 0};
}

OpenedTable TableFile::readHeader(const std::string& path, TableHeader& header) {
    return openAndReadHeader(File::openForReading(path), header);
}

OpenedTable TableFile::open(const std::string& path) {
    File file = File::openForReading(path);
    TableHeader header;
    OpenedTable opened = openAndReadHeader(file, header);
    if (opened.fault != TableFault::None) return opened;
    opened.table.reset(new TableFile(std::move(file), header));
    if (opened.table->readIndex()) return opened;
    return {nullptr, TableFault::Damaged, 0};
}

TableFile::TableFile(File openFile, const TableHeader& header)
    : file(std::move(openFile)), fields(header), positionNumbers(header) {}

bool TableFile::readIndex() {
    const std::uint64_t indexSize = std::uint64_t{fields.blockCount} * IndexEntrySize;
    if (fields.fileSize < HeaderSize + indexSize) return false;
    std::vector<std::uint8_t> bytes(indexSize);
    if (!file.readAt(HeaderSize, bytes.data(), bytes.size())) return false;
    // One call of crc32 takes the whole index: the largest is below 2^20 bytes.
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
    return start == fields.fileSize;
}

std::uint32_t TableFile::valuesInBlock(std::uint32_t block) const {
    const std::uint64_t first = std::uint64_t{block} << fields.blockBits;
    const std::uint64_t left = fields.valueCount() - first;
    return left < fields.blockSize() ? static_cast<std::uint32_t>(left) : fields.blockSize();
}

bool TableFile::hasSoundBlocks() const {
    std::vector<std::uint8_t> compressed(MostCompressed);
    for (std::uint32_t block = 0; block < fields.blockCount; ++block) {
        if (!readCompressed(block, compressed.data())) return false;
    }
    return true;
}

bool TableFile::readBlock(std::uint32_t block, std::uint8_t* values) const {
    if (isBroken()) return false;
    if (inflateBlock(block, values)) return true;
    broken.store(true, std::memory_order_relaxed);
    return false;
}

bool TableFile::readCompressed(std::uint32_t block, std::uint8_t* compressed) const {
    const auto length = static_cast<std::size_t>(blockStarts[block + 1] - blockStarts[block]);
    return file.readAt(blockStarts[block], compressed, length) &&
           crc32(0, compressed, static_cast<uInt>(length)) == blockChecksums[block];
}

bool TableFile::inflateBlock(std::uint32_t block, std::uint8_t* values) const {
    std::uint8_t compressed[MostCompressed];
    if (!readCompressed(block, compressed)) return false;
    const auto length = static_cast<std::size_t>(blockStarts[block + 1] - blockStarts[block]);
    return inflateInto(values, valuesInBlock(block), compressed, length);
}

}  // namespace vatro::egtb
