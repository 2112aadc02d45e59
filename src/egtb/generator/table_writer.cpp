// egtb/generator/table_writer.cpp - from words of the generator to blocks of a file.
#include "egtb/generator/table_writer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <vector>

#include <zlib.h>

#include "egtb/generator/parallel.h"
#include "egtb/generator/value_stream.h"

namespace vatro::egtb {
namespace {

constexpr std::uint32_t BlocksPerBatch = 256;  // compressed, then written, at a time

}  // namespace

Status writeTable(const Ending& ending,
                  const Material& material,
                  PartFile& file,
                  int blockBits,
                  const Workers& workers,
                  const PartDone& partDone) {
    TableHeader header = makeHeader(material, blockBits);
    header.maxPlies = ending.longestMate();
    for (int side = 0; side < header.sidesStored; ++side) {
        header.order[side] =
            cheapestOrder(ending, material, static_cast<Colour>(side), header.blockSize(), workers);
    }
    const ValueStream values(ending, header);
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
        parallelFor(workers, count, 1, [&](std::uint64_t begin, std::uint64_t end) {
            std::uint8_t codes[1U << MaxBlockBits];
            for (std::uint64_t i = begin; i < end; ++i) {
                const std::uint64_t offset = (first + i) << blockBits;
                const auto size = static_cast<std::uint32_t>(
                    std::min<std::uint64_t>(header.blockSize(), header.valueCount() - offset));
                values.fill(offset, size, codes);
                lengths[i] = batch[i].size();
                if (!compressBlock(codes, size, batch[i].data(), lengths[i])) hasMemory = false;
            }
        });
        if (workers.areStopped()) return Status::interrupted();
        if (!hasMemory) throw std::bad_alloc();
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint8_t* entry = &index[std::size_t{first + i} * IndexEntrySize];
            putLittleEndian(entry, lengths[i], 4);
            putLittleEndian(entry + 4, crc32(0, batch[i].data(), static_cast<uInt>(lengths[i])), 4);
            if (!file.write(at, batch[i].data(), lengths[i])) {
                return Status::failure(file.fault());
            }
            at += lengths[i];
        }
        if (!partDone(static_cast<double>(first + count) / header.blockCount)) {
            return Status::interrupted();
        }
    }
    header.fileSize = at;
    header.indexChecksum =
        static_cast<std::uint32_t>(crc32(0, index.data(), static_cast<uInt>(index.size())));
    const HeaderBytes bytes = encodeHeader(header);
    if (!file.write(HeaderSize, index.data(), index.size()) ||
        !file.write(0, bytes.data(), bytes.size()) || !file.putInPlace()) {
        return Status::failure(file.fault());
    }
    return Status::good();
}

}  // namespace vatro::egtb
