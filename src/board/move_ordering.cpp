// src/board/move_ordering.cpp - scores of moves and the losing-capture test.
#include "board/move_ordering.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "board/move_generator.h"
#include "board/piece_square_table.h"
#include "board/side.h"

namespace vatro {
namespace {

// By piece type, NoPiece to King. Tuned; no derivation.
constexpr int orderingValue[PieceTypeCount] = {0, 1, 2, 2, 3, 4, 5};
constexpr int captureValue[PieceTypeCount] = {0, 125, 400, 400, 600, 1125, 0};
constexpr int coarseValue[PieceTypeCount] = {0, 1, 3, 3, 4, 5, 0};

/// The rule of thumb for losing captures: a weaker victim that a pawn defends, or a knight does
/// against a heavy piece.
template <Colour Us>
bool isLosing(const Board_0x88& board, PieceType mover, PieceType victim, int to) {
    if (coarseValue[victim] >= coarseValue[mover]) return false;
    const SquareMask* theirs = board.pieceMask[Side<Us>::Them];
    if (pawnAttacks[Us][to] & theirs[Pawn]) return true;
    const bool asksKnights = mover == Queen || (mover == Rook && victim == Pawn);
    return asksKnights && (knightAttacks[to] & theirs[Knight]);
}

int captureScore(PieceType mover, PieceType victim) {
    return 64 * orderingValue[victim] - orderingValue[mover];
}
/// `victim`: NoPiece for a promotion without a capture.
int promotionScore(PieceType into, PieceType victim) {
    return 8 * (8 * orderingValue[victim] + orderingValue[into]) - orderingValue[Pawn];
}

constexpr int GoodCaptureBonus = 1000;
constexpr int BadCaptureMalus = 50;
constexpr int KillerBonus = 150;

/// Appends moves with the scores of the search.
template <Colour Us>
class ScoringSink {
  public:
    ScoringSink(const Board_0x88& position, const KillerSet& refutations, MoveList& out)
        : board(position), killers(refutations), list(out) {}

    void addPawnStep(int from, int to, unsigned extra) {
        addQuiet(Pawn, makeMoveWord(from, to, Normal, extra), from, to);
    }
    void addPawnCapture(int from, int to) { addCapture(Pawn, from, to); }
    void addEnPassant(int from, int to) {
        list.add(makeMoveWord(from, to, EnPassant), captureScore(Pawn, Pawn) + GoodCaptureBonus);
    }
    void addCastling(int from, int to, unsigned kind) {
        addQuiet(King, makeMoveWord(from, to, Castling, kind), from, to);
    }
    void addPromotions(int from, int to, Kind) {
        for (const PieceType into : {Queen, Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, into),
                     promotionScore(into, board.pieceAt(toSquare(to))) + GoodCaptureBonus);
        }
    }
    void addTargets(PieceType type, int from, SquareMask targets, const StepOrder& order) {
        for (int i = 0; i < order.count; ++i) {
            const int to = order.targets[i];
            if ((targets >> to) & 1) addPieceMove(type, from, to);
        }
    }
    void addSliding(PieceType type, int from, SquareMask targets, int firstRay) {
        forEachOnRays(from, targets, firstRay, [&](int to) { addPieceMove(type, from, to); });
    }

  private:
    void addPieceMove(PieceType type, int from, int to) {
        if (board.pieceOn[toSquare(to)] == NoPiece) {
            addQuiet(type, makeMoveWord(from, to), from, to);
        } else {
            addCapture(type, from, to);
        }
    }

    void addQuiet(PieceType type, Move move, int from, int to) {
        const int gain = killers.contains(from, to) ? KillerBonus
                                                    : pieceSquareTable.at(Us, type, to).mg -
                                                          pieceSquareTable.at(Us, type, from).mg;
        list.add(move, gain - orderingValue[type]);
    }

    void addCapture(PieceType type, int from, int to) {
        const PieceType victim = board.pieceAt(toSquare(to));
        const bool bad = isLosing<Us>(board, type, victim, to);
        list.add(makeMoveWord(from, to),
                 captureScore(type, victim) + (bad ? -BadCaptureMalus : GoodCaptureBonus));
    }

    const Board_0x88& board;
    const KillerSet& killers;
    MoveList& list;
};

/// Appends captures and promotions with the scores of quiescence, which put good captures into the
/// order of the search too.
template <Colour Us>
class CaptureSink {
  public:
    /// What is wanted: all captures and promotions to a queen, or good captures and all promotions.
    enum class Choice { All, Good };

    CaptureSink(const Board_0x88& position, Choice wanted, MoveList& out)
        : board(position), choice(wanted), list(out) {}

    void addPawnStep(int, int, unsigned) {}
    void addCastling(int, int, unsigned) {}
    void addPawnCapture(int from, int to) { addCapture(Pawn, from, to); }
    void addEnPassant(int from, int to) {
        list.add(makeMoveWord(from, to, EnPassant), captureScore(Pawn, Pawn));
    }
    void addPromotions(int from, int to, Kind) {
        for (const PieceType into : {Queen, Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, into),
                     promotionScore(into, board.pieceAt(toSquare(to))));
            if (choice == Choice::All) return;
        }
    }
    void addTargets(PieceType type, int from, SquareMask targets, const StepOrder& order) {
        if (isSingle(targets)) return addCapture(type, from, lowestSquare(targets));
        for (int i = 0; i < order.count; ++i) {
            const int to = order.targets[i];
            if ((targets >> to) & 1) addCapture(type, from, to);
        }
    }
    [[gnu::noinline]] void addSliding(PieceType type, int from, SquareMask targets, int firstRay) {
        if (isSingle(targets)) return addCapture(type, from, lowestSquare(targets));
        forEachOnRays(from, targets, firstRay, [&](int to) { addCapture(type, from, to); });
    }

  private:
    /// Most pieces can take nothing or just one piece.
    static bool isSingle(SquareMask targets) { return (targets & (targets - 1)) == 0; }

    [[gnu::noinline]] void addCapture(PieceType type, int from, int to) {
        const PieceType victim = board.pieceAt(toSquare(to));
        if (choice == Choice::Good && isLosing<Us>(board, type, victim, to)) return;
        list.add(makeMoveWord(from, to), captureScore(type, victim));
    }

    const Board_0x88& board;
    const Choice choice;
    MoveList& list;
};

/// One routine for both choices, which are made in turn: the code of a search barely fits into the
/// processor's first cache.
template <Colour Us>
[[gnu::noinline]] void appendCaptures(const Board_0x88& board,
                                      const PinInfo& info,
                                      typename CaptureSink<Us>::Choice choice,
                                      MoveList& list) {
    CaptureSink<Us> sink(board, choice, list);
    Generator<Us, Kind::Captures, CaptureSink<Us>>(board, info, sink).generate();
}

/// A set of places in a move list.
class PlaceSet {
  public:
    void add(unsigned place) { words[place / 64] |= std::uint64_t{1} << (place % 64); }
    unsigned countBelow(unsigned place) const {
        const std::uint64_t below = (std::uint64_t{1} << (place % 64)) - 1;
        int count = std::popcount(words[place / 64] & below);
        for (unsigned word = 0; word < place / 64; ++word) {
            count += std::popcount(words[word]);
        }
        return static_cast<unsigned>(count);
    }

  private:
    std::uint64_t words[MoveList::Capacity / 64 + 1] = {};
};

/// Carries the first move of a queue to its end, so many times.
void turn(ScoredMove* first, ScoredMove* end, unsigned times) {
    const auto size = static_cast<unsigned>(end - first);
    if (size > 1 && times % size != 0) std::rotate(first, first + times % size, end);
}

/// What a move is sorted by: ascending, the best score first, equal scores as they stand.
int sortKey(const ScoredMove& entry, unsigned place) {
    return -entry.score * 256 + static_cast<int>(place);
}
static_assert(MoveList::Capacity < 256);

}  // namespace

// In terms of selection: the moves of one score that no better move precedes form a queue. Each
// selection of a better move carries the queue's first move past the others to its end, and frees
// the way for the moves behind it by one. So a move joins the queue after as many selections as it
// has better moves before it, and the queue turns until all better moves are gone.
void sortAsSelected(MoveList& list) {
    const unsigned count = list.count;
    int keys[MoveList::Capacity + 1];
    for (unsigned i = 0; i < count; ++i) {
        keys[i] = sortKey(list.moves[i], i);
    }
    constexpr unsigned Lanes = 8;  // the ranks are counted in whole vectors
    const unsigned padded = (count + Lanes - 1) / Lanes * Lanes;
    std::fill(keys + count, keys + padded, std::numeric_limits<int>::max());

    ScoredMove sorted[MoveList::Capacity];
    std::uint8_t places[MoveList::Capacity];  // in the unsorted list
    for (unsigned i = 0; i < count; ++i) {
        int rank = 0;
        for (unsigned j = 0; j < padded; ++j) {
            rank += keys[j] < keys[i];
        }
        sorted[rank] = list.moves[i];
        places[rank] = static_cast<std::uint8_t>(i);
    }

    PlaceSet better;
    for (unsigned first = 0, end; first < count; first = end) {
        end = first + 1;
        while (end < count && sorted[end].score == sorted[first].score)
            ++end;
        unsigned joined = better.countBelow(places[first]);
        for (unsigned i = first + 1; i < end; ++i) {
            const unsigned next = better.countBelow(places[i]);
            turn(sorted + first, sorted + i, next - joined);
            joined = next;
        }
        turn(sorted + first, sorted + end, first - joined);
        for (unsigned i = first; i < end; ++i)
            better.add(places[i]);
    }
    std::copy_n(sorted, count, list.moves);
}

template <Colour Us>
bool isBadCapture(const Board_0x88& board, Move move, int& gain) {
    switch (typeOf(move)) {
        case Castling:
            return false;
        case EnPassant:
            gain = captureValue[Pawn];
            return false;
        case Promotion:
            gain = captureValue[promotionPiece(move)] - captureValue[Pawn];
            return false;
        case Normal:
            break;
    }
    const PieceType victim = board.pieceAt(toSquareOf(move));
    const PieceType mover = board.pieceAt(fromSquare(move));
    gain = captureValue[victim];
    return isLosing<Us>(board, mover, victim, to64(move));
}

bool isBadCapture(const Board_0x88& board, Move move, int& gain) {
    return board.sideToMove == White ? isBadCapture<White>(board, move, gain)
                                     : isBadCapture<Black>(board, move, gain);
}

template <Colour Us>
[[gnu::noinline]] void generateScoredMoves(const Board_0x88& board,
                                           const PinInfo& info,
                                           const KillerSet& killers,
                                           MoveList& list) {
    ScoringSink<Us> sink(board, killers, list);
    Generator<Us, Kind::All, ScoringSink<Us>>(board, info, sink).generate();
}

template <Colour Us>
void generateGoodCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    appendCaptures<Us>(board, info, CaptureSink<Us>::Choice::Good, list);
}

template <Colour Us>
void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    appendCaptures<Us>(board, info, CaptureSink<Us>::Choice::All, list);
}

void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    board.sideToMove == White ? generateCaptures<White>(board, info, list)
                              : generateCaptures<Black>(board, info, list);
}

template bool isBadCapture<White>(const Board_0x88&, Move, int&);
template bool isBadCapture<Black>(const Board_0x88&, Move, int&);
template void generateScoredMoves<White>(const Board_0x88&,
                                         const PinInfo&,
                                         const KillerSet&,
                                         MoveList&);
template void generateScoredMoves<Black>(const Board_0x88&,
                                         const PinInfo&,
                                         const KillerSet&,
                                         MoveList&);
template void generateGoodCaptures<White>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateGoodCaptures<Black>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateCaptures<White>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateCaptures<Black>(const Board_0x88&, const PinInfo&, MoveList&);

}  // namespace vatro
