// board/move_ordering.h - how promising a move looks before it is searched.
#pragma once

#include <climits>

#include "board/attacks.h"
#include "board/board.h"
#include "board/side.h"

namespace vatro {

/// What taking a piece gains, in centipawns, by type. Tuned; no derivation.
constexpr int captureValue[PieceTypeCount] = {0, 125, 400, 400, 600, 1125, 0};

/// Enemy pieces that may be taken.
struct Victims {
    SquareMask squares;
    int mostLeftOut;  // the highest value of the pieces that are not among them; INT_MIN for none
};

/// Those whose capture gains more than `least`, and the king with them: where a FEN lets it be
/// taken, that comes first and gains nothing. None, when only the king would be left.
template <Colour Us>
Victims victimsAbove(const Board_0x88& board, int least) {
    const SquareMask* theirs = board.pieceMask[Side<Us>::Them];
    Victims victims = {theirs[NoPiece], INT_MIN};
    for (const PieceType type : {Pawn, Knight, Bishop, Rook, Queen}) {
        if (captureValue[type] > least) break;
        victims.squares ^= theirs[type];
        victims.mostLeftOut = captureValue[type];
    }
    if (victims.mostLeftOut != INT_MIN && victims.squares == theirs[King]) victims.squares = 0;
    return victims;
}

/// True when a capture loses material by a rule of thumb. `gain` receives what the move wins, in
/// centipawns; castling leaves it unchanged.
template <Colour Us>
bool isBadCapture(const Board_0x88& board, Move move, int& gain);

/// True for a move that takes nothing and does not promote.
inline bool isQuiet(const Board_0x88& board, Move move) {
    return board.pieceOn[toSquare(move)] == NoPiece && (typeOf(move) & Promotion) == 0;
}
static_assert((EnPassant & Promotion) && !(Castling & Promotion) && !(Normal & Promotion));

/// The quiet moves that refuted other positions at this ply or two plies later.
class KillerSet {
  public:
    KillerSet() = default;
    explicit KillerSet(const Board_0x88& board) {
        add(board.record());
        if (board.ply + 2 < PlyRecordCount) add(board.plyRecords[board.ply + 2]);
    }

    bool contains(Square64 from, Square64 to) const {
        if (!vatro::contains(targets, to)) return false;  // nearly always
        const Move squares = makeMoveWord(from, to);
        for (unsigned i = 0; i < count; ++i) {
            if (((moves[i] ^ squares) & 0xFFF) == 0) return true;
        }
        return false;
    }

  private:
    void add(const PlyRecord& record) {
        for (const Move killer : record.killers) {
            moves[count++] = killer;
            targets |= maskOf(to64(killer));
        }
    }

    Move moves[4];
    unsigned count = 0;
    SquareMask targets = 0;
};

/// Appends all legal moves with their scores: good captures and promotions first, then killers,
/// then quiet moves by their piece-square gain.
template <Colour Us>
void generateScoredMoves(const Board_0x88& board,
                         const PinInfo& info,
                         const KillerSet& killers,
                         MoveList& list);

/// Appends only good captures and promotions, with other scores than generateScoredMoves but in the
/// same order of scores.
template <Colour Us>
void generateGoodCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list);

/// Appends the legal captures on the squares of `victims`, en passant and promotions to a queen,
/// scored by victim and attacker alone.
template <Colour Us>
void generateCaptures(const Board_0x88& board,
                      const PinInfo& info,
                      SquareMask victims,
                      MoveList& list);

}  // namespace vatro
