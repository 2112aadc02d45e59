// egtb/table_file.cpp - opening, checking and reading table files.
//
// A file may hold anything: every checksum and every length is checked before it is used.
#include "egtb/table_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include <zlib.h>

namespace vatro::egtb {
namespace {

// No block that zlib makes is longer: compressBound adds less than 1024 bytes to such a block.
constexpr std::uint32_t MostCompressed = (1U << MaxBlockBits) + 1024;

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

/// A descriptor, or -1 and errno.
int openForReading(const std::string& path) {
    // Without O_NONBLOCK a pipe of this name would block the engine.
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

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

/// An open file, until somebody else takes it over.
class TableFile::Descriptor {
  public:
    explicit Descriptor(int openDescriptor) : descriptor(openDescriptor) {}
    ~Descriptor() {
        if (descriptor >= 0) close(descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return descriptor; }
    int release() { return std::exchange(descriptor, -1); }

  private:
    int descriptor;
};

OpenedTable TableFile::openAndReadHeader(const Descriptor& descriptor, TableHeader& header) {
    if (descriptor.get() < 0) return {nullptr, TableFault::CannotBeOpened, errno};
    struct stat status {};
    HeaderBytes bytes;
    const bool isFile = fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode);
    if (!isFile || !readFully(descriptor.get(), 0, bytes.data(), bytes.size())) {
        // A file too short for a header does not show who wrote it, so it counts as foreign; but
        // nobody misses an empty one.
        const bool isEmpty = isFile && status.st_size == 0;
        return {nullptr, isEmpty ? TableFault::Damaged : TableFault::Foreign, 0};
    }
    const TableFault fault = decodeHeader(bytes, header);
    if (fault != TableFault::None) return {nullptr, fault, 0};
    const bool isWhole = header.fileSize == static_cast<std::uint64_t>(status.st_size);
    return {nullptr, isWhole ? TableFault::None : TableFault::Damaged, 0};
}

OpenedTable TableFile::readHeader(const std::string& path, TableHeader& header) {
    return openAndReadHeader(Descriptor(openForReading(path)), header);
}

OpenedTable TableFile::open(const std::string& path) {
    Descriptor descriptor(openForReading(path));
    TableHeader header;
    OpenedTable opened = openAndReadHeader(descriptor, header);
    if (opened.fault != TableFault::None) return opened;
    opened.table.reset(new TableFile(descriptor.release(), header));
    if (opened.table->readIndex()) return opened;
    return {nullptr, TableFault::Damaged, 0};
}

TableFile::TableFile(int openDescriptor, const TableHeader& header)
    : descriptor(openDescriptor), fields(header), positionNumbers(header) {}

TableFile::~TableFile() { close(descriptor); }

bool TableFile::readIndex() {
    const std::uint64_t indexSize = std::uint64_t{fields.blockCount} * IndexEntrySize;
    if (fields.fileSize < HeaderSize + indexSize) return false;
    std::vector<std::uint8_t> bytes(indexSize);
    if (!readFully(descriptor, HeaderSize, bytes.data(), bytes.size())) return false;
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
    return readFully(descriptor, blockStarts[block], compressed, length) &&
           crc32(0, compressed, static_cast<uInt>(length)) == blockChecksums[block];
}

bool TableFile::inflateBlock(std::uint32_t block, std::uint8_t* values) const {
    std::uint8_t compressed[MostCompressed];
    if (!readCompressed(block, compressed)) return false;
    const auto length = static_cast<std::size_t>(blockStarts[block + 1] - blockStarts[block]);
    return inflateInto(values, valuesInBlock(block), compressed, length);
}

}  // namespace vatro::egtb
