// src/egtb/table_file.h - one open table: its block index in memory, its blocks on disk.
//
// Blocks are read by position, never through a shared file offset, so any number of threads may
// read at the same time.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "egtb/position_index.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

class TableFile {
  public:
    /// Opens a file and checks its header and block index. Null on failure; `fault` then says why,
    /// in words that follow the file's name, and `isForeign` whether another program wrote it.
    static std::unique_ptr<TableFile> open(const std::string& path,
                                           std::string& fault,
                                           bool& isForeign);
    /// The same for an open file, which the table then owns.
    static std::unique_ptr<TableFile> adopt(int descriptor, std::string& fault, bool& isForeign);

    ~TableFile();
    TableFile(const TableFile&) = delete;
    TableFile& operator=(const TableFile&) = delete;

    const TableHeader& header() const { return fields; }

    /// Where in the stream of values a well-formed position of the table's material stands;
    /// `isSwapped` when its White has the men of the table's Black.
    std::uint64_t offsetOf(const Position& position, bool isSwapped) const;

    /// Values in a block: all blocks are full but the last.
    std::uint32_t valuesInBlock(std::uint32_t block) const;

    /// Reads a block into `values`, which has room for the header's block size. False when the
    /// file no longer holds what its index says; the table is then broken and answers no more.
    bool readBlock(std::uint32_t block, std::uint8_t* values) const;

    bool isBroken() const { return broken.load(std::memory_order_relaxed); }

  private:
    TableFile(int descriptor, const TableHeader& header);
    bool readIndex(std::uint64_t actualSize);
    bool inflateBlock(std::uint32_t block, std::uint8_t* values) const;

    int descriptor;
    TableHeader fields;
    PositionIndex positionIndex;
    std::vector<std::uint64_t> blockStarts;  // file offsets, with the end of the last block
    std::vector<std::uint32_t> blockChecksums;
    mutable std::atomic<bool> broken{false};  // set by any reader, never cleared
};

}  // namespace vatro::egtb
