// egtb/table_set.cpp - finding the table files and looking positions up in them.
#include "egtb/table_set.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>

namespace vatro::egtb {
namespace {

/// The better of two values for the side to move has the greater preference: quick wins, slow wins,
/// the draw, slow losses, quick losses.
int preference(int code) {
    constexpr int AboveAnyCode = 256;
    if (code == DrawCode) return 0;
    return isWinCode(code) ? AboveAnyCode - code : code - AboveAnyCode;
}

/// The value of a move, for the side that makes it, into a position of the given value.
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
        blockSize = std::max(blockSize, table->header.blockSize());
    }
    cache = std::make_unique<BlockCache>(tables.empty() ? 0 : cacheBytes, blockSize);
}

void TableSet::addDirectory(const std::string& path) {
    std::vector<std::string> names;
    if (!listFolder(path, names)) {
        // A missing directory is a normal case; one that may not be read is worth a notice.
        if (errno == EACCES) notice(path + " cannot be read");
        return;
    }
    std::erase_if(names, [](const std::string& name) { return !name.ends_with(TableSuffix); });
    // Directories are listed in no particular order; sorted, the notice names the same file each
    // time.
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        addTable(pathIn(path, name), name);
    }
}

void TableSet::addTable(const std::string& path, const std::string& fileName) {
    TableHeader header;
    const OpenedTable opened = TableFile::readHeader(path, header);
    if (opened.fault != TableFault::None) {
        return notice(fileName + " " + opened.faultText() + "; " + opened.advice());
    }
    const Material& material = header.material;
    if (fileName != material.name() + TableSuffix) {
        return notice(fileName + " is a table of " + material.name() + "; rename it");
    }
    Entry& entry = entries[material.side[White].key() * MenKeyCount + material.side[Black].key()];
    if (entry.table >= 0) return;
    entry = {static_cast<std::int16_t>(tables.size()), false};
    if (!material.isSymmetric()) {
        entries[material.side[Black].key() * MenKeyCount + material.side[White].key()] = {
            entry.table, true};
    }
    tables.push_back(std::make_unique<Table>(path, header));
}

void TableSet::notice(const std::string& text) const {
    const std::lock_guard<std::mutex> lock(noticeLock);
    if (++noticeCount == 1) firstNotice = text;
    hasNotice.store(true, std::memory_order_relaxed);
}

void TableSet::markBroken(Table& table) const noexcept {
    if (table.isBroken.exchange(true, std::memory_order_relaxed)) return;
    try {
        notice(table.header.material.name() + TableSuffix +
               " can no longer be read; make it again with vatro-tbgen");
    } catch (const std::bad_alloc&) {
        // The search goes on without this comment line.
    }
}

std::shared_ptr<const TableFile> TableSet::openFile(Table& table) const noexcept try {
    const std::lock_guard<std::mutex> lock(opening);
    table.lastUse = ++useCount;
    if (table.file) return table.file;
    OpenedTable opened = TableFile::open(table.path);
    // A file that was replaced may have other numbers.
    if (!opened.table || encodeHeader(opened.table->header()) != encodeHeader(table.header)) {
        // Too many files of the process are open for a while: that breaks no table.
        const bool isBusy = opened.fault == TableFault::CannotBeOpened &&
                            (opened.systemError == EMFILE || opened.systemError == ENFILE);
        if (!isBusy) markBroken(table);
        return nullptr;
    }
    if (openCount == MostOpenFiles) {
        Table* oldest = nullptr;
        for (const auto& other : tables) {
            if (other->file && (!oldest || other->lastUse < oldest->lastUse)) oldest = other.get();
        }
        oldest->file.reset();  // closed once the last probe that reads from it is done
        --openCount;
    }
    table.file = std::move(opened.table);
    ++openCount;
    return table.file;
} catch (const std::bad_alloc&) {
    return nullptr;  // no memory for the index now: that breaks no table
}

int TableSet::openFiles() const {
    const std::lock_guard<std::mutex> lock(opening);
    return openCount;
}

std::string TableSet::takeNotice() const {
    if (!hasNotice.load(std::memory_order_relaxed)) return {};
    const std::lock_guard<std::mutex> lock(noticeLock);
    if (!hasNotice.exchange(false, std::memory_order_relaxed)) return {};
    std::string text = "tablebases: ignored: " + firstNotice;
    if (noticeCount > 1) text += " (and " + std::to_string(noticeCount - 1) + " more)";
    noticeCount = 0;
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
    Table& table = *tables[entry.table];
    const std::uint64_t offset = table.numbers.offsetOf(position, entry.isSwapped);
    const auto block = static_cast<std::uint32_t>(offset >> table.header.blockBits);
    const auto within = static_cast<std::uint32_t>(offset) & (table.header.blockSize() - 1);
    const int cached = cache->find(entry.table, block, within);
    const bool isBroken = table.isBroken.load(std::memory_order_relaxed);
    if (cached >= 0 || source == Source::Cache || isBroken) return cached;

    const std::shared_ptr<const TableFile> file = openFile(table);
    if (!file) return -1;
    std::uint8_t values[1U << MaxBlockBits];
    ++diskReads;
    if (!file->readBlock(block, values)) {
        markBroken(table);
        return -1;
    }
    cache->insert(entry.table, block, values, file->valuesInBlock(block));
    return values[within];
}

int TableSet::probe(const Position& position,
                    Square64 ep,
                    Source source,
                    std::uint64_t& diskReads) const {
    const int ordinary = probeOrdinary(position, source, diskReads);
    if (ep == NoEpSquare || ordinary < 0) return ordinary;
    // The table's value takes no account of the capture; the positions after it are in smaller
    // tables.
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
    // Where the capture is the only legal move, the table calls it stalemate and the draw does not
    // count. If it calls it mate, every capture is preferred anyway.
    const bool mustTake = ordinary == DrawCode && !hasOrdinaryMove(position);
    return mustTake || preference(best) > preference(ordinary) ? best : ordinary;
}

}  // namespace vatro::egtb
