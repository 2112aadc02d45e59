// src/egtb/table_set.h - the tables found in some directories, and the cache that they share.
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

namespace vatro::egtb {

class TableSet {
  public:
    /// Opens the tables in the directories of `paths`, separated by ';'. Of two tables of one
    /// ending the first counts. A path without tables is no fault.
    TableSet(const std::string& paths, std::size_t cacheBytes);

    enum class Source { Cache, Disk };
    /// The value code of a legal position, or -1 when it cannot be found. Counts blocks read from
    /// disk in `diskReads`. Any thread.
    int probe(const Position& position, int ep, Source source, std::uint64_t& diskReads) const;

    std::size_t tableCount() const { return tables.size(); }

    /// What to tell the user about files that could not be used, in one line, once; else empty.
    std::string takeNotice() const;

  private:
    struct Entry {
        std::int16_t table = -1;  // index in `tables`
        bool isSwapped = false;   // the table has the colours the other way round
    };

    void addDirectory(const std::string& path);
    void addTable(const std::string& path, const std::string& fileName);
    void notice(const std::string& text) const;
    void noticeBroken(const TableFile& table) const noexcept;
    /// Like `probe`, but as if no pawn could be taken en passant.
    int probeOrdinary(const Position& position, Source source, std::uint64_t& diskReads) const;

    std::vector<std::unique_ptr<TableFile>> tables;
    std::array<Entry, std::size_t{MenKeyCount} * MenKeyCount> entries{};  // White's men, Black's
    mutable std::unique_ptr<BlockCache> cache;
    mutable std::mutex noticeLock;  // never taken by a probe that finds its block intact
    mutable std::string firstNotice;
    mutable int noticeCount = 0;
};

}  // namespace vatro::egtb
