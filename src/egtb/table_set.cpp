// src/egtb/table_set.cpp - finding the table files and looking positions up in them.
#include "egtb/table_set.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <system_error>

namespace vatro::egtb {
namespace {

/// Order of values for the side to move: quick wins first, slow losses before quick ones.
int preference(int code) {
    if (code == DrawCode) return 0;
    return isWinCode(code) ? 1000 - code : code - 1000;
}

/// The value of a position in which a move leads to a position of value `code`.
int codeBeforeMove(int code) { return code == DrawCode ? DrawCode : code + 1; }

}  // namespace

TableSet::TableSet(const std::string& paths, std::size_t cacheBytes) {
    for (std::size_t begin = 0; begin <= paths.size();) {
        const std::size_t end = std::min(paths.find(';', begin), paths.size());
        if (end > begin) addDirectory(paths.substr(begin, end - begin));
        begin = end + 1;
    }
    std::uint32_t blockSize = 1U << MinBlockBits;
    for (const auto& table : tables) {
        blockSize = std::max(blockSize, table->header().blockSize());
    }
    cache = std::make_unique<BlockCache>(tables.empty() ? 0 : cacheBytes, blockSize);
}

void TableSet::addDirectory(const std::string& path) {
    std::error_code error;
    std::filesystem::directory_iterator entry(path, error);
    if (error) {
        // That there is nothing is a normal case; that it may not be read is worth a word.
        if (error == std::errc::permission_denied) notice(path + " cannot be read");
        return;
    }
    std::vector<std::string> names;
    for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.ends_with(TableSuffix)) names.push_back(name);
        if (error) break;
    }
    // The order of a directory is its own; the user is told about the same file each time.
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        addTable((std::filesystem::path(path) / name).string(), name);
    }
}

void TableSet::addTable(const std::string& path, const std::string& fileName) {
    std::string fault;
    bool isForeign = false;
    auto table = TableFile::open(path, fault, isForeign);
    if (!table) return notice(fileName + " " + fault);
    const Material& material = table->header().material;
    if (fileName != material.name() + TableSuffix) {
        return notice(fileName + " is a table of " + material.name());
    }
    Entry& entry = entries[material.side[White].key() * MenKeyCount + material.side[Black].key()];
    if (entry.table >= 0) return;
    entry = {static_cast<std::int16_t>(tables.size()), false};
    if (!material.isSymmetric()) {
        entries[material.side[Black].key() * MenKeyCount + material.side[White].key()] = {
            entry.table, true};
    }
    tables.push_back(std::move(table));
}

void TableSet::notice(const std::string& text) const {
    const std::lock_guard<std::mutex> lock(noticeLock);
    if (++noticeCount == 1) firstNotice = text;
}

void TableSet::noticeBroken(const TableFile& table) const noexcept {
    try {
        notice(table.header().material.name() + TableSuffix + " can no longer be read");
    } catch (const std::bad_alloc&) {
        // A lost comment line is no reason to stop a search.
    }
}

std::string TableSet::takeNotice() const {
    const std::lock_guard<std::mutex> lock(noticeLock);
    std::string text;
    if (noticeCount > 0 && !firstNotice.empty()) {
        text = "tablebases: " + firstNotice + ", ignored";
        if (noticeCount > 1) text += " (and " + std::to_string(noticeCount - 1) + " more)";
    }
    firstNotice.clear();
    return text;
}

int TableSet::probeOrdinary(const Position& position,
                            Source source,
                            std::uint64_t& diskReads) const {
    const Material material = position.material();
    if (material.pieceCount() == 2) return DrawCode;
    const Entry entry =
        entries[material.side[White].key() * MenKeyCount + material.side[Black].key()];
    if (entry.table < 0) return -1;
    const TableFile& table = *tables[entry.table];
    const std::uint64_t offset = table.offsetOf(position, entry.isSwapped);
    const auto block = static_cast<std::uint32_t>(offset >> table.header().blockBits);
    const auto within = static_cast<std::uint32_t>(offset) & (table.header().blockSize() - 1);
    const int cached = cache->find(entry.table, block, within);
    if (cached >= 0 || source == Source::Cache || table.isBroken()) return cached;

    std::uint8_t values[1U << MaxBlockBits];
    ++diskReads;
    if (!table.readBlock(block, values)) {
        noticeBroken(table);
        return -1;
    }
    cache->insert(entry.table, block, values, table.valuesInBlock(block));
    return values[within];
}

int TableSet::probe(const Position& position,
                    int ep,
                    Source source,
                    std::uint64_t& diskReads) const {
    const int ordinary = probeOrdinary(position, source, diskReads);
    if (ep == NoEpSquare || ordinary < 0) return ordinary;
    // The table knows the position without the right to take; the captures are in smaller tables.
    int best = -1;
    bool isMissing = false;
    forEachEnPassant(position, ep, [&](const Position& child) {
        const int code = probeOrdinary(child, source, diskReads);
        if (code < 0) {
            isMissing = true;
        } else if (best < 0 || preference(codeBeforeMove(code)) > preference(best)) {
            best = codeBeforeMove(code);
        }
    });
    if (isMissing) return -1;
    if (best < 0) return ordinary;
    // What the table knows as stalemate is none: the capture must be made, good or bad. A mate that
    // the capture averts needs no such care, as every capture is better.
    const bool mustTake = ordinary == DrawCode && !hasOrdinaryMove(position);
    return mustTake || preference(best) > preference(ordinary) ? best : ordinary;
}

}  // namespace vatro::egtb
