// src/egtb/generator/verify.cpp - going through all positions of a finished table.
//
// Moves are made one by one here, unlike in the generator, so that both would have to be wrong in
// the same way for a fault to pass.
#include "egtb/generator/verify.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "egtb/generator/loaded_table.h"
#include "egtb/generator/parallel.h"
#include "egtb/generator/value_code.h"
#include "egtb/position_index.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t PositionsPerTask = 1 << 16;

/// A table and all tables that one move leads to.
class Family {
  public:
    bool load(const std::string& directory,
              const Material& material,
              int threads,
              std::string& error) {
        std::vector<Material> needed = successors(material);
        needed.push_back(material);
        tables.resize(std::size_t{MenKeyCount} * MenKeyCount);
        for (const Material& ending : needed) {
            auto table = std::make_shared<LoadedTable>();
            if (!table->load(directory, ending, threads, error)) return false;
            const Material swapped = ending.withColoursSwapped();
            tables[keyOf(swapped)] = {table, true};
            tables[keyOf(ending)] = {table, false};
        }
        return true;
    }

    std::uint8_t codeOf(const Position& position) const {
        const Material material = position.material();
        if (material.pieceCount() == 2) return DrawCode;
        const Entry& entry = tables[keyOf(material)];
        return entry.table->codeOf(position, entry.isSwapped);
    }

    /// The code that a position's moves give it.
    std::uint8_t codeByMoves(const Position& position, int ep) const {
        Value best = NoMove;
        forEachChild(position, ep, [&](const Position& child, int childEp) {
            const std::uint8_t code =
                childEp == NoEpSquare ? codeOf(child) : codeByMoves(child, childEp);
            best = std::max(best, valueOfMoveTo(code));
        });
        if (best != NoMove) return codeOfValue(best);
        return isInCheck(position, position.sideToMove) ? codeOfPlies(0) : DrawCode;
    }

  private:
    struct Entry {
        std::shared_ptr<LoadedTable> table;
        bool isSwapped = false;
    };
    static std::size_t keyOf(const Material& material) {
        return std::size_t{MenKeyCount} * material.side[White].key() + material.side[Black].key();
    }
    std::vector<Entry> tables;
};

std::string describe(int code) {
    if (code == DrawCode) return "draw";
    const std::string plies = std::to_string(pliesOfCode(code));
    return (isWinCode(code) ? "win in " : "loss in ") + plies + " plies";
}

/// The number is the one that stands for its position, not its mirror image.
bool isFirstImage(const PositionIndex& index, std::uint64_t number, const Position& position) {
    const int white = position.pieces[White].kingSquare();
    const int black = position.pieces[Black].kingSquare();
    if (fileOf64(white) != rankOf64(white) || fileOf64(black) != rankOf64(black)) return true;
    Position mirrored = position;
    for (Position::Pieces& pieces : mirrored.pieces) {
        for (int i = 0; i < pieces.count; ++i) {
            const int square = pieces.squares[i];
            if (pieces.types[i] == Pawn) return true;  // this symmetry is not one with pawns
            pieces.squares[i] = static_cast<std::uint8_t>(((square & 7) << 3) | (square >> 3));
        }
    }
    return number <= index.encode(mirrored);
}

/// Calls `use(number, position)` for the legal positions of both stored sides to move.
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

bool verifyTable(const std::string& directory,
                 const Material& material,
                 int threads,
                 const PartDone& partDone,
                 std::string& error) {
    Family family;
    if (!family.load(directory, material, threads, error)) return false;
    const TableHeader header = makeHeader(material, DefaultBlockBits);
    const PositionIndex index(material);
    std::atomic<bool> isGood{true};
    std::atomic<std::uint64_t> done{0};
    std::mutex reporting;
    parallelFor(
        threads, index.size(), PositionsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
            if (!isGood) return;
            forEachPosition(
                header, index, begin, end, [&](std::uint64_t, const Position& position) {
                    const int stored = family.codeOf(position);
                    const int byMoves = family.codeByMoves(position, NoEpSquare);
                    if (stored == byMoves) return;
                    const std::lock_guard<std::mutex> lock(reporting);
                    if (!isGood.exchange(false)) return;
                    error = material.name() + ": " + fenOf(position) + " is stored as " +
                            describe(stored) + ", its moves give " + describe(byMoves);
                });
            const std::uint64_t sum = done.fetch_add(end - begin) + end - begin;
            const std::lock_guard<std::mutex> lock(reporting);
            const double part = static_cast<double>(sum) / static_cast<double>(index.size());
            if (!partDone(part) && isGood.exchange(false)) error = "interrupted";
        });
    return isGood;
}

bool countTable(const std::string& directory,
                const Material& material,
                int threads,
                TableStatistics& statistics,
                std::string& error) {
    LoadedTable table;
    if (!table.load(directory, material, threads, error)) return false;
    const PositionIndex index(material);
    statistics.fileSize = table.header().fileSize;
    std::mutex adding;
    struct Longest {
        int plies = -1;
        std::uint64_t number = 0;
        Position position;
        void take(int otherPlies, std::uint64_t otherNumber, const Position& other) {
            // The lowest number, so that the answer does not depend on the threads.
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
    parallelFor(threads, index.size(), PositionsPerTask,
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
    return true;
}

}  // namespace vatro::egtb
