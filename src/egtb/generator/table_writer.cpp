// src/egtb/generator/table_writer.cpp - from words of the generator to blocks of a file.
#include "egtb/generator/table_writer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <new>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <zlib.h>

#include "egtb/generator/parallel.h"
#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

constexpr int CompressionLevel = 6;            // measured: 9 takes three times as long to save 1.3%
constexpr std::uint32_t BlocksPerBatch = 256;  // in memory at a time

/// A file under a temporary name, removed unless it is put in its place.
class PartFile {
  public:
    explicit PartFile(const std::string& finalPath)
        : finalName(finalPath), partName(finalPath + ".part") {}

    ~PartFile() {
        if (descriptor < 0) return;
        unlink(partName.c_str());
        close(descriptor);
    }
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// A part file left behind by an interrupted run is used again, one in use is not.
    bool create() {
        const int opened = ::open(partName.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        if (opened < 0) return false;
        struct stat byDescriptor {};
        struct stat byName {};
        // The other writer may have renamed the file between our opening and locking it.
        if (flock(opened, LOCK_EX | LOCK_NB) != 0 || fstat(opened, &byDescriptor) != 0 ||
            stat(partName.c_str(), &byName) != 0 || byDescriptor.st_ino != byName.st_ino) {
            close(opened);
            errno = EBUSY;
            return false;
        }
        descriptor = opened;
        return ftruncate(descriptor, 0) == 0;
    }

    bool write(std::uint64_t at, const std::uint8_t* bytes, std::size_t size) {
        while (size > 0) {
            const ssize_t put = pwrite(descriptor, bytes, size, static_cast<off_t>(at));
            if (put < 0 && errno == EINTR) continue;
            if (put <= 0) return false;
            bytes += put;
            at += static_cast<std::uint64_t>(put);
            size -= static_cast<std::size_t>(put);
        }
        return true;
    }

    bool putInPlace() {
        if (fsync(descriptor) != 0 || rename(partName.c_str(), finalName.c_str()) != 0) {
            return false;
        }
        close(descriptor);
        descriptor = -1;
        // The name itself is on disk only when the directory is.
        const std::filesystem::path parent = std::filesystem::path(finalName).parent_path();
        const int opened =
            ::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (opened >= 0) {
            fsync(opened);
            close(opened);
        }
        return true;
    }

  private:
    std::string finalName;
    std::string partName;
    int descriptor = -1;
};

/// Finds the values of an ending by their numbers in the file.
class ValueSource {
  public:
    ValueSource(const Ending& solved, const Material& material)
        : ending(solved), positionIndex(material) {
        // The same men, once in the order of a position and once in the generator's.
        std::array<std::array<bool, MaxPieces>, ColourCount> isTaken{};
        for (const Man& man : ending.wordLayout().men()) {
            int index = 1;
            while (material.side[man.colour].types[index - 1] != man.type ||
                   isTaken[man.colour][index]) {
                ++index;
            }
            isTaken[man.colour][index] = true;
            places[placeCount++] = {man.colour, index};
        }
    }

    /// Fills a block with codes. Where no legal position stands, the code before is repeated:
    /// nobody reads it, and it costs nothing.
    void fill(std::uint64_t firstOffset, std::uint32_t count, std::uint8_t* codes) const {
        const WordLayout& layout = ending.wordLayout();
        std::uint8_t last = DrawCode;
        std::uint32_t unknownAtStart = 0;
        bool isFirst = true;
        Position position;
        for (std::uint32_t i = 0; i < count; ++i) {
            const bool isBlack = firstOffset + i >= positionIndex.size();
            const std::uint64_t index = firstOffset + i - (isBlack ? positionIndex.size() : 0);
            const SideToMove& side = ending.side(isBlack ? Black : White);
            if (positionIndex.decode(index, position)) {
                std::uint64_t word = layout.kingPart(position.pieces[White].kingSquare());
                for (int man = 0; man < placeCount; ++man) {
                    const auto& [colour, place] = places[man];
                    word += layout.partOf(man, position.pieces[colour].squares[place]);
                }
                const int king = position.pieces[Black].kingSquare();
                if (side.open[word] & maskOf(king)) {
                    last = codeOfValue(side.values[word][king]);
                    if (isFirst) unknownAtStart = i;
                    isFirst = false;
                }
            }
            codes[i] = last;
        }
        std::fill(codes, codes + unknownAtStart, codes[unknownAtStart]);
    }

  private:
    struct Place {
        Colour colour;
        int index;  // in Position::Pieces
    };
    const Ending& ending;
    PositionIndex positionIndex;
    std::array<Place, MaxMen> places{};
    int placeCount = 0;
};

std::string systemError(const std::string& path) { return path + ": " + std::strerror(errno); }

}  // namespace

bool writeTable(const Ending& ending,
                const Material& material,
                const std::string& path,
                int blockBits,
                int threads,
                const PartDone& partDone,
                std::string& error) {
    TableHeader header = makeHeader(material, blockBits);
    header.maxPlies = ending.longestMate();
    PartFile file(path);
    if (!file.create()) {
        error =
            errno == EBUSY ? path + ".part is being written by another process" : systemError(path);
        return false;
    }
    const ValueSource source(ending, material);
    std::vector<std::uint8_t> index(std::size_t{header.blockCount} * IndexEntrySize);
    std::vector<std::vector<std::uint8_t>> batch(BlocksPerBatch);
    for (auto& compressed : batch) {
        compressed.resize(compressBound(header.blockSize()));
    }
    std::uint64_t at = HeaderSize + index.size();
    for (std::uint32_t first = 0; first < header.blockCount; first += BlocksPerBatch) {
        const std::uint32_t count = std::min(BlocksPerBatch, header.blockCount - first);
        std::array<uLongf, BlocksPerBatch> lengths;
        std::atomic<bool> hasMemory{true};
        parallelFor(threads, count, 1, [&](std::uint64_t begin, std::uint64_t end) {
            std::uint8_t codes[1U << MaxBlockBits];
            for (std::uint64_t i = begin; i < end; ++i) {
                const std::uint64_t offset = (first + i) << blockBits;
                const auto size = static_cast<std::uint32_t>(
                    std::min<std::uint64_t>(header.blockSize(), header.valueCount() - offset));
                source.fill(offset, size, codes);
                lengths[i] = batch[i].size();
                const int result =
                    compress2(batch[i].data(), &lengths[i], codes, size, CompressionLevel);
                if (result != Z_OK) hasMemory = false;
            }
        });
        if (!hasMemory) throw std::bad_alloc();
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint8_t* entry = &index[std::size_t{first + i} * IndexEntrySize];
            putLittleEndian(entry, lengths[i], 4);
            putLittleEndian(entry + 4, crc32(0, batch[i].data(), static_cast<uInt>(lengths[i])), 4);
            if (!file.write(at, batch[i].data(), lengths[i])) {
                error = systemError(path);
                return false;
            }
            at += lengths[i];
        }
        if (!partDone(static_cast<double>(first + count) / header.blockCount)) {
            error = "interrupted";
            return false;
        }
    }
    header.fileSize = at;
    header.indexChecksum =
        static_cast<std::uint32_t>(crc32(0, index.data(), static_cast<uInt>(index.size())));
    const HeaderBytes bytes = encodeHeader(header);
    if (!file.write(HeaderSize, index.data(), index.size()) ||
        !file.write(0, bytes.data(), bytes.size()) || !file.putInPlace()) {
        error = systemError(path);
        return false;
    }
    return true;
}

}  // namespace vatro::egtb
