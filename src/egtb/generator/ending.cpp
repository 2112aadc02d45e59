// src/egtb/generator/ending.cpp - the smaller endings and the course of the work.
#include "egtb/generator/ending.h"

#include <algorithm>
#include <atomic>
#include <numeric>

#include "egtb/generator/parallel.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 2048;
constexpr std::uint64_t BytesPerWord = ColourCount * (sizeof(ValueLine) + 5 * sizeof(SquareMask));

/// Calls `use(removed, promoted, becomes)` for each way to leave an ending: -1 and NoPiece where
/// nothing is removed or promoted.
template <typename Use>
void forEachExit(const std::vector<Man>& men, Use use) {
    const int count = static_cast<int>(men.size());
    for (int removed = 0; removed < count; ++removed) {
        use(removed, -1, NoPiece);
    }
    for (int pawn = 0; pawn < count; ++pawn) {
        if (men[pawn].type != Pawn) continue;
        for (const PieceType becomes : {Knight, Bishop, Rook, Queen}) {
            use(-1, pawn, becomes);
            for (int removed = 0; removed < count; ++removed) {
                // No pawn stands where a pawn promotes.
                if (men[removed].colour == men[pawn].colour || men[removed].type == Pawn) continue;
                use(removed, pawn, becomes);
            }
        }
    }
}

Material materialAfter(
    Material material, const std::vector<Man>& men, int removed, int promoted, PieceType becomes) {
    if (promoted >= 0) {
        material.side[men[promoted].colour].remove(Pawn);
        material.side[men[promoted].colour].add(becomes);
    }
    if (removed >= 0) material.side[men[removed].colour].remove(men[removed].type);
    return material;
}

}  // namespace

Ending::Ending(const Material& ending) : layout(ending), material(ending) {}

std::uint64_t Ending::memoryNeeded() const {
    std::vector<std::pair<Material, Colour>> seen;
    std::uint64_t bytes = layout.wordCount() * BytesPerWord;
    std::uint64_t largestFile = 0;
    const std::vector<Man>& men = layout.men();
    forEachExit(men, [&](int removed, int promoted, PieceType becomes) {
        const Colour toMove = promoted >= 0 ? ~men[promoted].colour : men[removed].colour;
        const std::pair key(materialAfter(material, men, removed, promoted, becomes), toMove);
        if (std::find(seen.begin(), seen.end(), key) != seen.end()) return;
        seen.push_back(key);
        bytes += SubTable(key.first, toMove).bytes();
        if (key.first.pieceCount() > 2) {
            largestFile = std::max(
                largestFile, makeHeader(key.first.canonical(), DefaultBlockBits).valueCount());
        }
    });
    // The smaller endings are read before the sets are made, but after the last its file goes.
    return bytes + largestFile;
}

Ending::Link Ending::linkTo(int removed, int promoted, PieceType becomes, Colour toMove) {
    const std::vector<Man>& men = layout.men();
    std::vector<std::pair<Man, int>> left;
    for (int man = 0; man < layout.menCount(); ++man) {
        if (man == removed) continue;
        left.emplace_back(man == promoted ? Man{becomes, men[man].colour} : men[man], man);
    }
    const Material next = materialAfter(material, men, removed, promoted, becomes);
    Link link;
    const auto found = std::find_if(subTables.begin(), subTables.end(), [&](const auto& table) {
        return table->material() == next && table->toMove() == toMove;
    });
    if (found == subTables.end()) {
        subTables.push_back(std::make_unique<SubTable>(next, toMove));
        link.table = subTables.back().get();
    } else {
        link.table = found->get();
    }
    const std::vector<Man> places = orderedMen(next);
    for (std::size_t place = 0; place < places.size(); ++place) {
        const auto man = std::find_if(left.begin(), left.end(), [&](const auto& entry) {
            return entry.first == places[place];
        });
        link.from[place] = man->second;
        left.erase(man);
    }
    return link;
}

bool Ending::prepare(const std::string& directory, int threads, std::string& error) {
    const std::vector<Man>& men = layout.men();
    forEachExit(men, [&](int removed, int promoted, PieceType becomes) {
        if (promoted < 0) {
            captureOf[removed] = linkTo(removed, -1, NoPiece, men[removed].colour);
        } else if (removed < 0) {
            promotionOf[promoted][becomes - Knight] =
                linkTo(-1, promoted, becomes, ~men[promoted].colour);
        } else {
            capturingPromotionOf[promoted][becomes - Knight][removed] =
                linkTo(removed, promoted, becomes, ~men[promoted].colour);
        }
    });
    for (const auto& table : subTables) {
        if (!table->load(directory, threads, error)) return false;
        longestSubMate = std::max(longestSubMate, table->longestMate());
    }
    const std::uint64_t words = layout.wordCount();
    for (SideToMove& side : sides) {
        side.open.resize(words);
        side.lost.resize(words);
        side.notWon.resize(words);
        side.winning.resize(words);
        side.losable.resize(words);
        side.values.resize(words);
    }
    parallelFor(threads, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            const WordPieces pieces = layout.pieces(word);
            for (const Colour us : {White, Black}) {
                sides[us].notWon[word] = layout.legalKings(pieces, us);
            }
            if (sides[White].notWon[word]) addCaptures<White>(pieces, sides[White].values[word]);
            if (sides[Black].notWon[word]) addCaptures<Black>(pieces, sides[Black].values[word]);
        }
    });
    // Whether a move is legal shows only when all legal positions of the other side are known.
    parallelFor(threads, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            findMatesAndStalemates<White>(word);
            findMatesAndStalemates<Black>(word);
        }
    });
    return true;
}

template <Colour Us>
void Ending::findMatesAndStalemates(std::uint64_t word) {
    SideToMove& side = sides[Us];
    const SquareMask legal = side.notWon[word];
    if (legal == 0) return;
    const WordPieces pieces = layout.pieces(word);
    ValueLine& values = side.values[word];
    SquareMask stuck = legal & ~quietMovesTo<Us, Goal::NotWon>(word, pieces, legal, 0);
    SquareMask winning = 0;
    SquareMask saved = 0;
    for (int king = 0; king < 64; ++king) {
        if (values[king] != NoMove) stuck &= ~maskOf(king);
        if (values[king] > DrawValue) winning |= maskOf(king);
        if (values[king] >= DrawValue) saved |= maskOf(king);
    }
    const SquareMask inCheck =
        Us == White ? layout.whiteInCheck(pieces) : layout.whiteAttacks(pieces);
    side.lost[word] = stuck & inCheck;  // NoMove is also the value of a mate
    for (SquareMask rest = stuck & ~inCheck; rest; rest &= rest - 1) {
        values[lowestSquare(rest)] = DrawValue;
    }
    side.open[word] = legal & ~stuck;
    side.winning[word] = side.open[word] & winning;
    side.losable[word] = side.open[word] & ~saved;
}

template <Colour Us>
bool Ending::findWins(std::uint64_t word, int plies) {
    SideToMove& side = sides[Us];
    const SquareMask open = side.open[word];
    if (open == 0) return false;
    const WordPieces pieces = layout.pieces(word);
    SquareMask won = open & quietMovesTo<Us, Goal::Lost>(word, pieces, open, plies - 1);
    ValueLine& values = side.values[word];
    for (SquareMask rest = side.winning[word] & open & ~won; rest; rest &= rest - 1) {
        if (values[lowestSquare(rest)] >= winIn(plies)) won |= rest & -rest;
    }
    if (won == 0) return false;
    side.open[word] &= ~won;
    side.losable[word] &= ~won;
    side.notWon[word] &= ~won;
    for (; won; won &= won - 1) {
        values[lowestSquare(won)] = winIn(plies);
    }
    return true;
}

template <Colour Us>
bool Ending::findLosses(std::uint64_t word, int plies) {
    SideToMove& side = sides[Us];
    SquareMask lost = side.losable[word];
    if (lost == 0) return false;
    const WordPieces pieces = layout.pieces(word);
    lost &= ~quietMovesTo<Us, Goal::NotWon>(word, pieces, lost, plies - 1);
    ValueLine& values = side.values[word];
    for (SquareMask rest = lost; rest; rest &= rest - 1) {
        Value& value = values[lowestSquare(rest)];
        if (value > lossIn(plies)) {
            lost &= ~(rest & -rest);  // a capture holds out longer
        } else {
            value = lossIn(plies);
        }
    }
    side.lost[word] |= lost;
    side.open[word] &= ~lost;
    side.losable[word] &= ~lost;
    return lost != 0;
}

bool Ending::solve(int threads, const PlyDone& plyDone, std::string& error) {
    const std::uint64_t words = layout.wordCount();
    // A ply of each kind without a find, with no capture still to come, is the end.
    for (int plies = 1, idle = 0; idle < 2 || plies <= longestSubMate + 2; ++plies) {
        if (plies > MaxPlies + 1) {
            error = material.name() + " has mates longer than the file format holds";
            return false;
        }
        std::atomic<bool> found{false};
        parallelFor(threads, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
            bool any = false;
            for (std::uint64_t word = begin; word < end; ++word) {
                if (plies & 1) {
                    any |= findWins<White>(word, plies);
                    any |= findWins<Black>(word, plies);
                } else {
                    any |= findLosses<White>(word, plies);
                    any |= findLosses<Black>(word, plies);
                }
            }
            if (any) found.store(true, std::memory_order_relaxed);
        });
        idle = found ? 0 : idle + 1;
        if (found) maxPlies = plies;
        if (!plyDone(plies)) {
            error = "interrupted";
            return false;
        }
    }
    // What is still open can be neither won nor lost.
    parallelFor(threads, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            const WordPieces pieces = layout.pieces(word);
            for (const Colour us : {White, Black}) {
                for (SquareMask rest = sides[us].open[word]; rest; rest &= rest - 1) {
                    sides[us].values[word][lowestSquare(rest)] = DrawValue;
                }
                sides[us].open[word] = layout.legalKings(pieces, us);
            }
        }
    });
    return true;
}

}  // namespace vatro::egtb
