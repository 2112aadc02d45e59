// egtb/table_file.h - one open table: its block index in memory, its blocks on disk.
//
// Blocks are read by their position, without an offset that readers share, so any number of threads
// may read at the same time.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/file.h"
#include "egtb/table_format.h"
#include "egtb/table_numbers.h"

namespace vatro::egtb {

class TableFile;

/// A table, or why there is none.
struct OpenedTable {
    std::unique_ptr<TableFile> table;  // null unless `fault` is None
    TableFault fault = TableFault::None;
    int systemError = 0;  // errno, for CannotBeOpened

    /// The fault in words that follow the file's name: "is damaged or incomplete".
    std::string faultText() const;
    /// What the user can do about it: "make it again with vatro-tbgen".
    std::string advice() const;
};

class TableFile {
  public:
    /// Opens a file and checks its header and block index.
    [[nodiscard]] static OpenedTable open(const std::string& path);
    /// Reads the header of a file, and checks it and the file's size. `opened.table` stays null.
    [[nodiscard]] static OpenedTable readHeader(const std::string& path, TableHeader& header);

    TableFile(const TableFile&) = delete;
    TableFile& operator=(const TableFile&) = delete;

    const TableHeader& header() const { return fields; }
    const TableNumbers& numbers() const { return positionNumbers; }

    /// Values in a block: the header's block size, but for the last block.
    std::uint32_t valuesInBlock(std::uint32_t block) const;

    /// Reads a block into `values`, which has room for the header's block size. False when the
    /// file does not hold what its index says; the table is then broken and reads no more blocks.
    [[nodiscard]] bool readBlock(std::uint32_t block, std::uint8_t* values) const;

    /// All blocks are there, as far as their checksums tell. Reads the whole file but inflates
    /// nothing: about a second a gigabyte.
    [[nodiscard]] bool hasSoundBlocks() const;

    bool isBroken() const { return broken.load(std::memory_order_relaxed); }

  private:
    TableFile(File openFile, const TableHeader& header);
    static OpenedTable openAndReadHeader(const File& file, TableHeader& header);
    bool readIndex();
    bool readCompressed(std::uint32_t block, std::uint8_t* compressed) const;
    bool inflateBlock(std::uint32_t block, std::uint8_t* values) const;

    File file;
    TableHeader fields;
    TableNumbers positionNumbers;
    std::vector<std::uint64_t> blockStarts;  // file offsets, then the end of the last block
    std::vector<std::uint32_t> blockChecksums;
    mutable std::atomic<bool> broken{false};  // set by any reader, never cleared
};

}  // namespace vatro::egtb
