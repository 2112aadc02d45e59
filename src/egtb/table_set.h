// egtb/table_set.h - the tables found in some directories, and the cache that they share.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "egtb/block_cache.h"
#include "egtb/position.h"
#include "egtb/table_file.h"
#include "egtb/table_numbers.h"

namespace vatro::egtb {

class TableSet {
  public:
    /// Opens the tables in the directories of `paths`, separated by ';'. Of two tables of one
    /// ending the first is used. A directory without tables is not an error.
    TableSet(const std::string& paths, std::size_t cacheBytes);

    enum class Source { Cache, Disk };
    /// The value code of a legal position, or -1 when no table gives it. Adds the blocks read from
    /// disk to `diskReads`. Any thread.
    int probe(const Position& position, Square64 ep, Source source, std::uint64_t& diskReads) const;

    /// So many files are open at a time, with their indexes: at most 1 MB each for five pieces.
    /// Tuned: a search reads from a dozen tables.
    static constexpr int MostOpenFiles = 24;
    /// Files that are open. Any thread.
    int openFiles() const;

    std::size_t tableCount() const { return tables.size(); }

    /// One line about files that could not be used; empty when there is nothing new to say, which
    /// takes no lock.
    std::string takeNotice() const;

  private:
    struct Entry {
        std::int16_t table = -1;  // index in `tables`
        bool isSwapped = false;   // White's men are those of the table's Black
    };
    /// A table whose header has been read. Its file is opened, and its index read, when a block is
    /// first asked for.
    struct Table {
        std::string path;
        TableHeader header;
        TableNumbers numbers;
        std::atomic<bool> isBroken{false};  // set by any reader, never cleared
        // The rest is guarded by `opening`.
        std::shared_ptr<const TableFile> file;
        std::uint64_t lastUse = 0;

        Table(const std::string& filePath, const TableHeader& fileHeader)
            : path(filePath), header(fileHeader), numbers(fileHeader) {}
    };

    void addDirectory(const std::string& path);
    void addTable(const std::string& path, const std::string& fileName);
    void notice(const std::string& text) const;
    void markBroken(Table& table) const noexcept;
    /// The open file of a table, opened now unless it is. Null when that fails; the table is then
    /// broken, unless only memory or descriptors are short.
    std::shared_ptr<const TableFile> openFile(Table& table) const noexcept;
    /// The same without regard to captures en passant.
    int probeOrdinary(const Position& position, Source source, std::uint64_t& diskReads) const;

    std::vector<std::unique_ptr<Table>> tables;
    std::array<Entry, std::size_t{MenKeyCount} * MenKeyCount> entries{};  // White's men, Black's
    std::unique_ptr<BlockCache> cache;
    mutable std::mutex opening;  // only a probe that reads from disk takes it
    mutable int openCount = 0;
    mutable std::uint64_t useCount = 0;
    mutable std::mutex noticeLock;  // a probe takes it only to report a broken file
    mutable std::string firstNotice;
    mutable int noticeCount = 0;  // since the last one was taken
    mutable std::atomic<bool> hasNotice{false};
};

}  // namespace vatro::egtb
