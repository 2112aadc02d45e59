// board/move_ordering.cpp - scores of moves and the losing-capture test.
#include "board/move_ordering.h"

#include "board/move_generator.h"
#include "board/piece_square_table.h"
#include "board/side.h"

namespace vatro {
namespace {

// By piece type, NoPiece to King. Tuned; no derivation.
constexpr int orderingValue[PieceTypeCount] = {0, 1, 2, 2, 3, 4, 5};
constexpr int coarseValue[PieceTypeCount] = {0, 1, 3, 3, 4, 5, 0};

/// The rule of thumb: the victim is weaker, and a pawn defends it; or a knight does, against a
/// queen or against a rook that takes a pawn.
template <Colour Us>
bool isLosing(const Board_0x88& board, PieceType mover, PieceType victim, Square64 to) {
    if (coarseValue[victim] >= coarseValue[mover]) return false;
    const SquareMask* theirs = board.pieceMask[Side<Us>::Them];
    if (pawnAttacks[Us][to] & theirs[Pawn]) return true;
    const bool asksKnights = mover == Queen || (mover == Rook && victim == Pawn);
    return asksKnights && (knightAttacks[to] & theirs[Knight]);
}

/// The strongest victim first, then the weakest attacker.
int captureScore(PieceType mover, PieceType victim) {
    return 64 * orderingValue[victim] - orderingValue[mover];
}
/// On the same scale, with the new piece behind the victim, which may be NoPiece.
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

    void addPawnStep(Square64 from, Square64 to, unsigned extra) {
        addQuiet(Pawn, makeMoveWord(from, to, Normal, extra), from, to);
    }
    void addPawnCapture(Square64 from, Square64 to) { addCapture(Pawn, from, to); }
    void addEnPassant(Square64 from, Square64 to) {
        list.add(makeMoveWord(from, to, EnPassant), captureScore(Pawn, Pawn) + GoodCaptureBonus);
    }
    void addCastling(Square64 from, Square64 to, unsigned castling) {
        addQuiet(King, makeMoveWord(from, to, Castling, castling), from, to);
    }
    void addPromotions(Square64 from, Square64 to, MoveSet) {
        for (const PieceType into : {Queen, Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, into),
                     promotionScore(into, board.pieceAt(as88(to))) + GoodCaptureBonus);
        }
    }
    void addTargets(PieceType type, Square64 from, SquareMask targets, const StepOrder& order) {
        for (int i = 0; i < order.count; ++i) {
            const Square64 to = order.target(i);
            if (contains(targets, to)) addPieceMove(type, from, to);
        }
    }
    void addSliding(PieceType type, Square64 from, SquareMask targets, int firstRay) {
        forEachOnRays(from, targets, firstRay, [&](Square64 to) { addPieceMove(type, from, to); });
    }

  private:
    void addPieceMove(PieceType type, Square64 from, Square64 to) {
        if (board.pieceOn[as88(to)] == NoPiece) {
            addQuiet(type, makeMoveWord(from, to), from, to);
        } else {
            addCapture(type, from, to);
        }
    }

    void addQuiet(PieceType type, Move move, Square64 from, Square64 to) {
        const int gain = killers.contains(from, to)
                             ? KillerBonus
                             : pieceSquareTable.at(Us, type, to).middleGame() -
                                   pieceSquareTable.at(Us, type, from).middleGame();
        list.add(move, gain - orderingValue[type]);
    }

    void addCapture(PieceType type, Square64 from, Square64 to) {
        const PieceType victim = board.pieceAt(as88(to));
        const bool bad = isLosing<Us>(board, type, victim, to);
        list.add(makeMoveWord(from, to),
                 captureScore(type, victim) + (bad ? -BadCaptureMalus : GoodCaptureBonus));
    }

    const Board_0x88& board;
    const KillerSet& killers;
    MoveList& list;
};

/// Appends captures and promotions with the scores of quiescence. They order good captures as the
/// scores of the search do.
template <Colour Us>
class CaptureSink {
  public:
    /// All captures and promotions to a queen, or good captures and all promotions.
    enum class Choice { All, Good };

    CaptureSink(const Board_0x88& position, Choice wanted, MoveList& out)
        : board(position), choice(wanted), list(out) {}

    void addPawnStep(Square64, Square64, unsigned) {}
    void addCastling(Square64, Square64, unsigned) {}
    void addPawnCapture(Square64 from, Square64 to) { addCapture(Pawn, from, to); }
    void addEnPassant(Square64 from, Square64 to) {
        list.add(makeMoveWord(from, to, EnPassant), captureScore(Pawn, Pawn));
    }
    void addPromotions(Square64 from, Square64 to, MoveSet) {
        for (const PieceType into : {Queen, Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, into), promotionScore(into, board.pieceAt(as88(to))));
            if (choice == Choice::All) return;
        }
    }
    void addTargets(PieceType type, Square64 from, SquareMask targets, const StepOrder& order) {
        if (isSingle(targets)) return addCapture(type, from, lowestSquare(targets));
        for (int i = 0; i < order.count; ++i) {
            const Square64 to = order.target(i);
            if (contains(targets, to)) addCapture(type, from, to);
        }
    }
    [[gnu::noinline]] void addSliding(PieceType type,
                                      Square64 from,
                                      SquareMask targets,
                                      int firstRay) {
        if (isSingle(targets)) return addCapture(type, from, lowestSquare(targets));
        forEachOnRays(from, targets, firstRay, [&](Square64 to) { addCapture(type, from, to); });
    }

  private:
    /// Most pieces can take nothing or just one piece.
    static bool isSingle(SquareMask targets) { return (targets & (targets - 1)) == 0; }

    [[gnu::noinline]] void addCapture(PieceType type, Square64 from, Square64 to) {
        const PieceType victim = board.pieceAt(as88(to));
        if (choice == Choice::Good && isLosing<Us>(board, type, victim, to)) return;
        list.add(makeMoveWord(from, to), captureScore(type, victim));
    }

    const Board_0x88& board;
    const Choice choice;
    MoveList& list;
};

/// One routine for both choices: a search's code barely fits into the first-level instruction
/// cache.
template <Colour Us>
[[gnu::noinline]] void appendCaptures(const Board_0x88& board,
                                      const PinInfo& info,
                                      SquareMask victims,
                                      typename CaptureSink<Us>::Choice choice,
                                      MoveList& list) {
    CaptureSink<Us> sink(board, choice, list);
    Generator<Us, MoveSet::Captures, CaptureSink<Us>>(board, info, sink, victims).generate();
}

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
    const PieceType victim = board.pieceAt(toSquare(move));
    const PieceType mover = board.pieceAt(fromSquare(move));
    gain = captureValue[victim];
    return isLosing<Us>(board, mover, victim, to64(move));
}

template <Colour Us>
[[gnu::noinline]] void generateScoredMoves(const Board_0x88& board,
                                           const PinInfo& info,
                                           const KillerSet& killers,
                                           MoveList& list) {
    ScoringSink<Us> sink(board, killers, list);
    Generator<Us, MoveSet::All, ScoringSink<Us>>(board, info, sink).generate();
}

template <Colour Us>
void generateGoodCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    const SquareMask all = board.pieceMask[Side<Us>::Them][NoPiece];
    appendCaptures<Us>(board, info, all, CaptureSink<Us>::Choice::Good, list);
}

template <Colour Us>
void generateCaptures(const Board_0x88& board,
                      const PinInfo& info,
                      SquareMask victims,
                      MoveList& list) {
    appendCaptures<Us>(board, info, victims, CaptureSink<Us>::Choice::All, list);
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
template void generateCaptures<White>(const Board_0x88&, const PinInfo&, SquareMask, MoveList&);
template void generateCaptures<Black>(const Board_0x88&, const PinInfo&, SquareMask, MoveList&);

}  // namespace vatro
