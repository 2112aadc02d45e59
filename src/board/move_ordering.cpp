// src/board/move_ordering.cpp - scores of moves and the losing-capture test.
#include "board/move_ordering.h"

#include <type_traits>

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

constexpr int GoodCaptureBonus = 1000;
constexpr int BadCaptureMalus = 50;
constexpr int KillerBonus = 150;

/// For a sink that is not asked for quiet moves, nor for captures that rank among them.
struct NoQuiets {};

/// Appends moves with the scores of the search. Quiets: a KillerSet, or NoQuiets for good captures
/// and promotions alone.
template <Colour Us, typename Quiets>
class ScoringSink {
  public:
    ScoringSink(const Board_0x88& position, const Quiets& wanted, MoveList& out)
        : board(position), list(out), quiets(wanted) {}

    void addPawnStep(int from, int to, unsigned extra) {
        addQuiet(Pawn, makeMoveWord(from, to, Normal, extra), from, to);
    }
    void addPawnCapture(int from, int to) { addCapture(Pawn, from, to); }
    void addEnPassant(int from, int to) {
        list.add(makeMoveWord(from, to, EnPassant), 64 - orderingValue[Pawn] + GoodCaptureBonus);
    }
    void addCastling(int from, int to, unsigned kind) {
        addQuiet(King, makeMoveWord(from, to, Castling, kind), from, to);
    }
    void addPromotions(int from, int to, Kind) {
        const int victim = orderingValue[board.pieceOn[toSquare(to)]];
        for (const PieceType into : {Queen, Knight, Rook, Bishop}) {
            const int score = (orderingValue[into] + 8 * victim) * 8 - orderingValue[Pawn];
            list.add(makePromotion(from, to, into), score + GoodCaptureBonus);
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
    static constexpr bool wantsQuiets = std::is_same_v<Quiets, KillerSet>;

    void addPieceMove(PieceType type, int from, int to) {
        if (board.pieceOn[toSquare(to)] == NoPiece) {
            addQuiet(type, makeMoveWord(from, to), from, to);
        } else {
            addCapture(type, from, to);
        }
    }

    void addQuiet(PieceType type, Move move, int from, int to) {
        if constexpr (wantsQuiets) {
            const int gain = quiets.contains(from, to) ? KillerBonus
                                                       : pieceSquareTable.at(Us, type, to).mg -
                                                             pieceSquareTable.at(Us, type, from).mg;
            list.add(move, gain - orderingValue[type]);
        }
    }

    void addCapture(PieceType type, int from, int to) {
        const PieceType victim = board.pieceAt(toSquare(to));
        const int score = 64 * orderingValue[victim] - orderingValue[type];
        const bool bad = isLosing<Us>(board, type, victim, to);
        if (bad && !wantsQuiets) return;
        list.add(makeMoveWord(from, to), score + (bad ? -BadCaptureMalus : GoodCaptureBonus));
    }

    const Board_0x88& board;
    MoveList& list;
    const Quiets& quiets;
};

/// Appends captures with the scores of quiescence.
class CaptureSink {
  public:
    CaptureSink(const Board_0x88& position, MoveList& out) : board(position), list(out) {}

    void addPawnStep(int, int, unsigned) {}
    void addCastling(int, int, unsigned) {}
    void addPawnCapture(int from, int to) { addCapture(Pawn, from, to); }
    void addEnPassant(int from, int to) {
        list.add(makeMoveWord(from, to, EnPassant), 64 - orderingValue[Pawn]);
    }
    void addPromotions(int from, int to, Kind) {
        const int victim = orderingValue[board.pieceOn[toSquare(to)]];
        list.add(makePromotion(from, to, Queen),
                 8 * (8 * victim + orderingValue[Queen]) - orderingValue[Pawn]);
    }
    void addTargets(PieceType type, int from, SquareMask targets, const StepOrder& order) {
        for (int i = 0; i < order.count; ++i) {
            const int to = order.targets[i];
            if ((targets >> to) & 1) addCapture(type, from, to);
        }
    }
    void addSliding(PieceType type, int from, SquareMask targets, int firstRay) {
        forEachOnRays(from, targets, firstRay, [&](int to) { addCapture(type, from, to); });
    }

  private:
    void addCapture(PieceType type, int from, int to) {
        const PieceType victim = board.pieceAt(toSquare(to));
        list.add(makeMoveWord(from, to), 64 * orderingValue[victim] - orderingValue[type]);
    }

    const Board_0x88& board;
    MoveList& list;
};

}  // namespace

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
void generateScoredMoves(const Board_0x88& board,
                         const PinInfo& info,
                         const KillerSet& killers,
                         MoveList& list) {
    using Sink = ScoringSink<Us, KillerSet>;
    Sink sink(board, killers, list);
    Generator<Us, Kind::All, Sink>(board, info, sink).generate();
}

template <Colour Us>
void generateGoodCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    using Sink = ScoringSink<Us, NoQuiets>;
    Sink sink(board, {}, list);
    Generator<Us, Kind::Captures, Sink>(board, info, sink).generate();
}

template <Colour Us>
void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    CaptureSink sink(board, list);
    Generator<Us, Kind::Captures, CaptureSink>(board, info, sink).generate();
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
