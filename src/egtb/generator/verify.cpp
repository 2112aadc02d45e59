// egtb/generator/verify.cpp - going through all positions of a finished table.
//
// A sample of the positions comes first, its moves made one at a time by other code than the
// generator's: there a fault goes unnoticed only if both make the same one. Then all positions, a
// word at a time.
#include "egtb/generator/verify.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>

#include "egtb/block_cache.h"
#include "egtb/generator/loaded_table.h"
#include "egtb/generator/parallel.h"
#include "egtb/generator/value_code.h"
#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t PositionsPerTask = 1 << 16;
constexpr std::uint64_t WordsPerTask = 1024;
constexpr std::uint64_t SamplesPerTask = 64;
// Positions of each table that are checked by single moves: below a second, mostly of reading.
constexpr std::uint64_t Samples = 4096;

/// A table and all tables that one move leads to, read a block at a time.
class Family {
  public:
    Status open(const std::string& directory, const Material& material) {
        std::vector<Material> needed = successors(material);
        needed.push_back(material);
        entries.resize(std::size_t{MenKeyCount} * MenKeyCount);
        std::uint32_t blockSize = 0;
        for (const Material& ending : needed) {
            const std::string path = tablePath(directory, ending);
            OpenedTable opened = TableFile::open(path);
            if (!opened.table) {
                return Status::failure(path + " " + opened.faultText() + "; " + opened.advice());
            }
            blockSize = std::max(blockSize, opened.table->header().blockSize());
            const int table = static_cast<int>(tables.size());
            tables.push_back(std::move(opened.table));
            entries[keyOf(ending.withColoursSwapped())] = {table, true};
            entries[keyOf(ending)] = {table, false};
        }
        cache = std::make_unique<BlockCache>(CacheBytes, blockSize);
        return Status::good();
    }

    std::uint8_t codeOf(const Position& position) {
        const Material material = position.material();
        if (material.pieceCount() == 2) return DrawCode;
        const Entry& entry = entries[keyOf(material)];
        const TableFile& table = *tables[entry.table];
        const std::uint64_t offset = table.numbers().offsetOf(position, entry.isSwapped);
        const auto block = static_cast<std::uint32_t>(offset >> table.header().blockBits);
        const auto within = static_cast<std::uint32_t>(offset) & (table.header().blockSize() - 1);
        const int cached = cache->find(entry.table, block, within);
        if (cached >= 0) return static_cast<std::uint8_t>(cached);
        std::uint8_t values[1U << MaxBlockBits];
        if (!table.readBlock(block, values)) {
            damaged = entry.table;
            return DrawCode;
        }
        cache->insert(entry.table, block, values, table.valuesInBlock(block));
        return values[within];
    }

    /// Name of a table of which a block could not be read; empty when there is none.
    std::string damagedTable() const {
        return damaged < 0 ? std::string() : tables[damaged]->header().material.name();
    }

    /// The code that a position's moves give it.
    std::uint8_t codeByMoves(const Position& position, Square64 ep) {
        Value best = NoMoveValue;
        forEachChild(position, ep, [&](const Position& child, Square64 childEp) {
            const std::uint8_t code =
                childEp == NoEpSquare ? codeOf(child) : codeByMoves(child, childEp);
            best = std::max(best, valueOfMoveTo(code));
        });
        if (best != NoMoveValue) return codeOfValue(best);
        return isInCheck(position, position.sideToMove) ? codeOfPlies(0) : DrawCode;
    }

  private:
    static constexpr std::size_t CacheBytes = std::size_t{64} << 20;
    struct Entry {
        int table = -1;
        bool isSwapped = false;
    };
    static std::size_t keyOf(const Material& material) {
        return std::size_t{MenKeyCount} * material.side[White].key() + material.side[Black].key();
    }
    std::vector<std::unique_ptr<TableFile>> tables;
    std::vector<Entry> entries;  // by material
    std::unique_ptr<BlockCache> cache;
    std::atomic<int> damaged{-1};
};

std::string describe(int code) {
    if (code == DrawCode) return "draw";
    const std::string plies = std::to_string(pliesOfCode(code));
    return (isWinCode(code) ? "win in " : "loss in ") + plies + " plies";
}

/// False when the number is the greater one of a position and its mirror image.
bool isFirstImage(const PositionIndex& index, std::uint64_t number, const Position& position) {
    const Square64 white = position.pieces[White].kingSquare();
    const Square64 black = position.pieces[Black].kingSquare();
    if (fileOf(white) != rankOf(white) || fileOf(black) != rankOf(black)) return true;
    Position mirrored = position;
    for (Position::Pieces& pieces : mirrored.pieces) {
        for (int i = 0; i < pieces.count; ++i) {
            if (pieces.types[i] == Pawn) return true;  // with pawns the diagonal is no symmetry
            pieces.squares[i] = mapSquare(pieces.squares[i], SwapAxes);
        }
    }
    return number <= index.encode(mirrored);
}

/// Calls `use(number, position)` for each legal position with a stored side to move.
template <typename Use>
void forEachPosition(const TableHeader& header,
                     const PositionIndex& index,
                     std::uint64_t begin,
                     std::uint64_t end,
                     Use use) {
    Position position;
    for (std::uint64_t number = begin; number < end; ++number) {
        if (!index.decode(number, position)) continue;
        for (int side = 0; side < header.sidesStored; ++side) {
            position.sideToMove = static_cast<Colour>(side);
            if (isWellFormed(position) && isLegal(position)) use(number, position);
        }
    }
}

/// Reads a table as lines of the values of moves into its positions.
Status readLines(const std::string& directory,
                 const Material& material,
                 const WordLayout& layout,
                 Colour toMove,
                 const Workers& workers,
                 LargeArray<ValueLine>& lines) {
    LoadedTable table;
    Status status = table.load(directory, material, workers, toMove);
    if (!status.isGood()) return status;
    lines = LargeArray<ValueLine>(layout.wordCount());
    parallelFor(workers, layout.wordCount(), WordsPerTask,
                [&](std::uint64_t begin, std::uint64_t end) {
                    std::array<std::uint8_t, 64> codes{};
                    for (std::uint64_t word = begin; word < end; ++word) {
                        const WordPieces pieces = layout.pieces(word);
                        SquareMask kings = legalKings(layout.men(), pieces, toMove);
                        if (kings == 0) continue;
                        Position position = positionOf(layout.men(), pieces, lowestSquare(kings));
                        position.sideToMove = toMove;
                        table.codesOf(position, false, kings, codes);
                        for (; kings; kings &= kings - 1) {
                            const Square64 king = lowestSquare(kings);
                            lines[word][king] = valueOfMoveTo(codes[king]);
                        }
                    }
                });
    return workers.areStopped() ? Status::interrupted() : status;
}

/// Checks positions all over the table, each move made on its own.
Status verifySample(const std::string& directory,
                    const Material& material,
                    const Workers& workers) {
    Family family;
    Status status = family.open(directory, material);
    if (!status.isGood()) return status;
    const TableHeader header = makeHeader(material, DefaultBlockBits);
    const PositionIndex index(material);
    std::atomic<bool> isGood{true};
    std::mutex reporting;
    const std::uint64_t step = index.size() / Samples | 1;  // odd, so that it meets all squares
    const std::uint64_t count = (index.size() + step - 1) / step;
    parallelFor(workers, count, SamplesPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t i = begin; i < end && isGood; ++i) {
            forEachPosition(
                header, index, i * step, i * step + 1,
                [&](std::uint64_t, const Position& position) {
                    const int stored = family.codeOf(position);
                    const int byMoves = family.codeByMoves(position, NoEpSquare);
                    if (stored == byMoves) return;
                    const std::lock_guard<std::mutex> lock(reporting);
                    if (!isGood.exchange(false)) return;
                    status = Status::failure(wrongValueLine(material, position, stored, byMoves));
                });
        }
    });
    if (!family.damagedTable().empty()) {
        return Status::failure(tablePath(directory, *parseMaterial(family.damagedTable())) +
                               " is damaged; delete it, so that it can be made again");
    }
    return workers.areStopped() ? Status::interrupted() : status;
}

}  // namespace

std::string fenOf(const Position& position) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        for (int file = 0; file < 8; ++file) {
            char letter = 0;
            for (const Colour colour : {White, Black}) {
                const Position::Pieces& pieces = position.pieces[colour];
                for (int i = 0; i < pieces.count; ++i) {
                    if (pieces.squares[i] != rank * 8 + file) continue;
                    letter = colour == White ? ".PNBRQK"[pieces.types[i]]
                                             : pieceLetters[pieces.types[i]];
                }
            }
            if (letter == 0) {
                ++empty;
                continue;
            }
            if (empty > 0) text += std::to_string(empty);
            empty = 0;
            text += letter;
        }
        if (empty > 0) text += std::to_string(empty);
        if (rank > 0) text += '/';
    }
    return text + (position.sideToMove == White ? " w - - 0 1" : " b - - 0 1");
}

std::string wrongValueLine(const Material& material,
                           const Position& position,
                           int stored,
                           int byMoves) {
    return material.name() + ": " + fenOf(position) + " is stored as " + describe(stored) +
           ", its moves give " + describe(byMoves) + "; delete the file and make it again";
}

Status verifyTable(const std::string& directory,
                   const Material& material,
                   const Workers& workers,
                   const PartDone& partDone) {
    Status status = verifySample(directory, material, workers);
    if (!status.isGood()) return status;
    Ending ending(material);
    status = ending.prepare(directory, workers);
    if (!status.isGood()) return status;
    std::array<LargeArray<ValueLine>, ColourCount> stored;
    for (const Colour toMove : {White, Black}) {
        status =
            readLines(directory, material, ending.wordLayout(), toMove, workers, stored[toMove]);
        if (!status.isGood()) return status;
    }
    return ending.verify(workers, stored, partDone);
}

Status countTable(const std::string& directory,
                  const Material& material,
                  const Workers& workers,
                  TableStatistics& statistics) {
    LoadedTable table;
    Status status = table.load(directory, material, workers);
    if (!status.isGood()) return status;
    const PositionIndex index(material);
    statistics.fileSize = table.header().fileSize;
    std::mutex adding;
    struct Longest {
        int plies = -1;
        std::uint64_t number = 0;
        Position position;
        void take(int otherPlies, std::uint64_t otherNumber, const Position& other) {
            // Of like ones the lowest number wins, so that the answer does not depend on threads.
            if (otherPlies < plies || (otherPlies == plies && otherNumber >= number)) return;
            plies = otherPlies;
            number = otherNumber;
            position = other;
        }
    };
    struct Sum {
        std::uint64_t draws = 0;
        std::array<std::uint64_t, 2> decided{};  // losses, wins
        std::array<Longest, 2> longest{};
    };
    std::array<Sum, ColourCount> total;
    parallelFor(workers, index.size(), PositionsPerTask,
                [&](std::uint64_t begin, std::uint64_t end) {
                    std::array<Sum, ColourCount> part;
                    forEachPosition(table.header(), index, begin, end,
                                    [&](std::uint64_t number, const Position& position) {
                                        if (!isFirstImage(index, number, position)) return;
                                        Sum& sum = part[position.sideToMove];
                                        const int code = table.codeOf(position, false);
                                        if (code == DrawCode) {
                                            ++sum.draws;
                                            return;
                                        }
                                        ++sum.decided[isWinCode(code)];
                                        sum.longest[isWinCode(code)].take(pliesOfCode(code), number,
                                                                          position);
                                    });
                    const std::lock_guard<std::mutex> lock(adding);
                    for (const Colour colour : {White, Black}) {
                        total[colour].draws += part[colour].draws;
                        for (int isWin = 0; isWin < 2; ++isWin) {
                            total[colour].decided[isWin] += part[colour].decided[isWin];
                            const Longest& longest = part[colour].longest[isWin];
                            total[colour].longest[isWin].take(longest.plies, longest.number,
                                                              longest.position);
                        }
                    }
                });
    if (workers.areStopped()) return Status::interrupted();
    for (const Colour colour : {White, Black}) {
        const Sum& sum = total[colour];
        TableStatistics::Side& side = statistics.side[colour];
        side.draws = sum.draws;
        side.losses = sum.decided[0];
        side.wins = sum.decided[1];
        if (side.losses > 0) {
            side.longestLoss = sum.longest[0].plies;
            side.longestLossFen = fenOf(sum.longest[0].position);
        }
        if (side.wins > 0) {
            side.longestWin = sum.longest[1].plies;
            side.longestWinFen = fenOf(sum.longest[1].position);
        }
    }
    return status;
}

}  // namespace vatro::egtb
