// egtb/generator/verify_moves.cpp - the values that the moves of whole words give.
//
// One pass over the finished values, in which no ply counts: this shares the making of moves with
// the search for mates, but not the search.
#include <algorithm>
#include <atomic>
#include <mutex>

#include "egtb/generator/ending.h"
#include "egtb/generator/lines.h"
#include "egtb/generator/parallel.h"
#include "egtb/generator/verify.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 2048;

/// The value that a position has for its side to move, given that of a move into it.
Value valueAfterMove(Value ofMove) {
    if (ofMove == DrawValue) return DrawValue;
    const int plies = pliesOfValue(ofMove) - 1;
    return ofMove > DrawValue ? lossIn(plies) : winIn(plies);
}

/// Improves `best` by the moves of the black king.
void addBlackKingMoves(const ValueLine& line, ValueLine& best) {
    for (const Square64 king : allSquares) {
        Value value = best[king];
        for (SquareMask rest = kingAttacks[king]; rest; rest &= rest - 1) {
            value = std::max(value, line[lowestSquare(rest)]);
        }
        best[king] = value;
    }
}

}  // namespace

/// The values of a double step that can be answered en passant, from those that take no account of
/// the answer.
template <Colour Us>
ValueLine Ending::afterDoubleStep(const WordPieces& pieces, int pawn, const ValueLine& line) const {
    constexpr int Up = Us == White ? 8 : -8;
    const ValueLine taking = capturesEnPassant<Us>(pieces, pawn);
    WordPieces after = pieces;
    after.at[pawn] = pieces.at[pawn] + 2 * Up;
    ValueLine values = line;
    for (const Square64 king : allSquares) {
        if (line[king] == NoMoveValue || taking[king] == NoMoveValue) continue;
        Value theirs = valueAfterMove(line[king]);
        Position position = positionOf(layout.men(), after, king);
        position.sideToMove = ~Us;
        const bool mustTake = theirs == DrawValue && !hasOrdinaryMove(position);
        theirs = mustTake ? taking[king] : std::max(theirs, taking[king]);
        values[king] = valueOfMoveTo(codeOfValue(theirs));
    }
    return values;
}

template <Colour Us>
void Ending::addPawnMoves(std::uint64_t word,
                          const WordPieces& pieces,
                          int pawn,
                          const LargeArray<ValueLine>& theirs,
                          ValueLine& best) const {
    constexpr int Up = Us == White ? 8 : -8;
    constexpr int DoubleStepRank = Us == White ? 1 : 6;
    constexpr int LastRank = Us == White ? 7 : 0;
    const Square64 from = pieces.at[pawn];
    const Square64 to = from + Up;
    if (rankOf(to) == LastRank || (pieces.occupied & maskOf(to))) return;
    const WordsOfMan words = layout.wordsOfMan(word, pieces, pawn);
    improve(best, theirs[words[to]], 0, 0);
    if (rankOf(from) != DoubleStepRank || (pieces.occupied & maskOf(to + Up))) return;
    const ValueLine& line = theirs[words[to + Up]];
    if (canBePassed<Us>(pieces, pawn)) {
        improve(best, afterDoubleStep<Us>(pieces, pawn, line), 0, maskOf(to));
    } else {
        improve(best, line, 0, maskOf(to));
    }
}

template <Colour Us>
void Ending::addQuietMoves(std::uint64_t word,
                           const WordPieces& pieces,
                           const LargeArray<ValueLine>& theirs,
                           ValueLine& best) const {
    if constexpr (Us == White) {
        SquareMask moves = kingAttacks[pieces.whiteKing] & ~pieces.occupied;
        for (; moves; moves &= moves - 1) {
            const Square64 to = lowestSquare(moves);
            const int symmetry = normalisingSymmetry(to, layout.hasPawns());
            ManSquares at{};
            for (int man = 0; man < layout.menCount(); ++man) {
                at[man] = mapSquare(pieces.at[man], symmetry);
            }
            const std::uint64_t target = layout.wordOf(mapSquare(to, symmetry), at);
            improve(best, theirs[target], symmetry, 0);
        }
    } else {
        addBlackKingMoves(theirs[word], best);
    }
    for (int man = 0; man < layout.menCount(); ++man) {
        if (layout.men()[man].colour != Us) continue;
        const PieceType type = layout.men()[man].type;
        if (type == Pawn) {
            addPawnMoves<Us>(word, pieces, man, theirs, best);
            continue;
        }
        const Square64 from = pieces.at[man];
        const WordsOfMan words = layout.wordsOfMan(word, pieces, man);
        if (type == Knight) {
            SquareMask moves = knightAttacks[from] & ~pieces.occupied;
            for (; moves; moves &= moves - 1) {
                improve(best, theirs[words[lowestSquare(moves)]], 0, 0);
            }
            continue;
        }
        forEachSlide(type, from, pieces.occupied, [&](Square64 to, SquareMask unblocked) {
            improve(best, theirs[words[to]], 0, ~unblocked);
        });
    }
}

/// The black kings with which a stored value is not the `expected` one.
template <Colour Us>
SquareMask Ending::wrongValues(std::uint64_t word,
                               const WordPieces& pieces,
                               const std::array<LargeArray<ValueLine>, ColourCount>& stored,
                               ValueLine& expected) const {
    const SquareMask legal = sides[Us].notWon[word];
    if (legal == 0) return 0;
    expected = sides[Us].values[word];
    addQuietMoves<Us>(word, pieces, stored[~Us], expected);
    const SquareMask inCheck =
        Us == White ? whiteInCheck(layout.men(), pieces) : whiteAttacks(layout.men(), pieces);
    SquareMask wrong = 0;
    for (SquareMask rest = legal; rest; rest &= rest - 1) {
        const Square64 king = lowestSquare(rest);
        if (expected[king] == NoMoveValue && !(inCheck & maskOf(king))) expected[king] = DrawValue;
        const Value ofMove = valueOfMoveTo(codeOfValue(expected[king]));
        if (stored[Us][word][king] != ofMove) wrong |= maskOf(king);
    }
    return wrong;
}

Status Ending::verify(const Workers& workers,
                      const std::array<LargeArray<ValueLine>, ColourCount>& stored,
                      const std::function<bool(double)>& partDone) const {
    const std::uint64_t words = layout.wordCount();
    Status status = Status::good();
    std::atomic<bool> isGood{true};
    std::atomic<std::uint64_t> done{0};
    std::mutex reporting;
    const auto report = [&](const WordPieces& pieces, Colour toMove, SquareMask wrong,
                            const ValueLine& expected) {
        const std::lock_guard<std::mutex> lock(reporting);
        if (!isGood.exchange(false)) return;
        const Square64 king = lowestSquare(wrong);
        Position position = positionOf(layout.men(), pieces, king);
        position.sideToMove = toMove;
        const std::uint64_t word = layout.wordOf(pieces.whiteKing, pieces.at);
        const Value found = valueAfterMove(stored[toMove][word][king]);
        status = Status::failure(
            wrongValueLine(material, position, codeOfValue(found), codeOfValue(expected[king])));
    };
    parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        ValueLine expected{};
        for (std::uint64_t word = begin; word < end && isGood; ++word) {
            const WordPieces pieces = layout.pieces(word);
            SquareMask wrong = wrongValues<White>(word, pieces, stored, expected);
            if (wrong) report(pieces, White, wrong, expected);
            wrong = wrongValues<Black>(word, pieces, stored, expected);
            if (wrong) report(pieces, Black, wrong, expected);
        }
        const std::uint64_t sum = done.fetch_add(end - begin) + end - begin;
        const std::lock_guard<std::mutex> lock(reporting);
        const bool goesOn = partDone(static_cast<double>(sum) / static_cast<double>(words));
        if (!goesOn && isGood.exchange(false)) status = Status::interrupted();
    });
    return workers.areStopped() ? Status::interrupted() : status;
}

}  // namespace vatro::egtb
