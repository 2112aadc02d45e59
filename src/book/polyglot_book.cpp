// book/polyglot_book.cpp - searching a book file for a position and drawing one of its moves.
//
// The file is not trusted: it may have shrunk since its entries were counted, be unsorted or hold
// moves of another game.
#include "book/polyglot_book.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include "base/file.h"
#include "book/book_move.h"

namespace vatro {
namespace {

// The format: entries of 16 bytes, sorted by key, all numbers with their highest byte first.
constexpr int EntrySize = 16;
constexpr int KeySize = 8;
constexpr int MoveOffset = 8;
constexpr int WeightOffset = 10;

constexpr unsigned MaxCandidates = 256;  // entries of one position; further ones are ignored

struct BookEntry {
    Key key;
    std::uint16_t move;
    std::uint16_t weight;
};

struct Candidates {
    BookEntry entries[MaxCandidates];
    unsigned count = 0;
};

std::uint64_t readBigEndian(const unsigned char* bytes, int size) {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i)
        value = value << 8 | bytes[i];
    return value;
}

/// A book that is open for one probe.
class BookFile {
  public:
    /// False when there is no regular file or it cannot be opened.
    [[nodiscard]] bool open(const std::string& path) {
        file = File::openForReading(path);
        return file.isOpen() && file.size();
    }

    /// Whole entries.
    std::uint32_t entryCount() const {
        constexpr std::uint64_t Most = std::numeric_limits<std::uint32_t>::max();
        return static_cast<std::uint32_t>(std::min(file.size().value_or(0) / EntrySize, Most));
    }

    [[nodiscard]] bool readKey(std::int64_t index, Key& key) const {
        unsigned char bytes[KeySize];
        if (!read(index, bytes, KeySize)) return false;
        key = readBigEndian(bytes, KeySize);
        return true;
    }

    [[nodiscard]] bool readEntry(std::int64_t index, BookEntry& entry) const {
        unsigned char bytes[EntrySize];
        if (!read(index, bytes, EntrySize)) return false;
        entry.key = readBigEndian(bytes, KeySize);
        entry.move = static_cast<std::uint16_t>(readBigEndian(bytes + MoveOffset, 2));
        entry.weight = static_cast<std::uint16_t>(readBigEndian(bytes + WeightOffset, 2));
        return true;
    }

  private:
    bool read(std::int64_t index, unsigned char* bytes, std::size_t size) const {
        return file.readAt(static_cast<std::uint64_t>(index) * EntrySize, bytes, size);
    }

    File file;
};

/// The index of an entry with the key, by binary search; -1 when there is none or the file cannot
/// be read. In the second case `error` gets the system's text, if the system has one.
std::int64_t findEntry(const BookFile& file, std::int64_t count, Key wanted, std::string& error) {
    std::int64_t low = 0;
    std::int64_t high = count - 1;
    while (low <= high) {
        const std::int64_t middle = (low + high + 1) / 2;
        Key key = 0;
        if (!file.readKey(middle, key)) {
            if (errno != 0) error = std::generic_category().message(errno);
            return -1;
        }
        if (key == wanted) return middle;
        if (key < wanted) {
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    return -1;
}

/// Appends the entries with the key from `index` on in steps of `step`. False on a read failure.
bool collectRun(const BookFile& file,
                std::int64_t index,
                int step,
                std::int64_t count,
                Key key,
                Candidates& candidates) {
    for (; index >= 0 && index < count && candidates.count < MaxCandidates; index += step) {
        BookEntry& entry = candidates.entries[candidates.count];
        if (!file.readEntry(index, entry)) return false;
        if (entry.key != key) break;
        ++candidates.count;
    }
    return true;
}

/// Draws in proportion to the weights. The first entry when all of them are 0.
const BookEntry& drawEntry(const Candidates& candidates, Random& random) {
    const BookEntry* entry = candidates.entries;
    std::uint32_t total = 0;
    for (unsigned i = 0; i < candidates.count; ++i)
        total += entry[i].weight;
    if (total == 0) return *entry;
    std::uint32_t rest = random.below(total);
    while (rest >= entry->weight)
        rest -= (entry++)->weight;
    return *entry;
}

/// 0 for what cannot be opened as a book.
std::uint32_t countEntries(const std::string& path) {
    BookFile file;
    return file.open(path) ? file.entryCount() : 0;
}

}  // namespace

PolyglotBook::PolyglotBook(std::string path) : filePath(std::move(path)) {
    if (filePath.size() > MaxPathLength) filePath.resize(MaxPathLength);
}

void PolyglotBook::setPath(const std::string& path) {
    const std::lock_guard lock(mutex);
    filePath = path.substr(0, MaxPathLength);
    entryCount = 0;
}

std::string PolyglotBook::path() const {
    const std::lock_guard lock(mutex);
    return filePath;
}

bool PolyglotBook::probe(const Board_0x88& board, Random& random, Move& move, std::string& error) {
    error.clear();
    std::string currentPath;
    std::int64_t count = 0;
    {
        const std::lock_guard lock(mutex);
        if (entryCount == 0) entryCount = countEntries(filePath);
        currentPath = filePath;
        count = entryCount;
    }
    BookFile file;
    if (count == 0 || !file.open(currentPath)) return false;

    const Key key = bookKey(board);
    const std::int64_t found = findEntry(file, count, key, error);
    if (found < 0) return false;
    Candidates candidates;
    // The entry found comes first, then those before it, nearest first, then those behind it.
    const bool readAll = collectRun(file, found, -1, count, key, candidates) &&
                         collectRun(file, found + 1, 1, count, key, candidates);
    // The file may have been replaced between the search and the second look at the entry.
    if (!readAll || candidates.count == 0) return false;
    move = fromBookMove(board, drawEntry(candidates, random).move);
    return move != NoMove;
}

}  // namespace vatro
