// board/make_move.h - playing moves on the board and taking them back.
//
// Calls nest strictly: the last move made is the first one unmade, with the same undo record. The
// moves must be legal in the position; nothing is checked here.
#pragma once

#include "board/board.h"
#include "board/zobrist.h"

namespace vatro {

/// Makes a move with everything that the game and the search need: keys, sums, rights, clock and a
/// new ply record. The caller has written `movePlayed` of the current record and made sure that
/// `ply` is below PlyRecordCount - 1.
void makeMove(Board_0x88& board, Move move, UndoRecord& undo);
void unmakeMove(Board_0x88& board, Move move, const UndoRecord& undo);

/// The same with only what counting moves needs: the key goes to the perft key stack, and sums,
/// ply records and the half-move clock stay as they are. At most PerftKeyCount - 1 moves deep.
void makeMovePerft(Board_0x88& board, Move move, UndoRecord& undo);
void unmakeMovePerft(Board_0x88& board, Move move, const UndoRecord& undo);

// The same where the caller knows the side to move.
template <Colour Us>
void makeMove(Board_0x88& board, Move move, UndoRecord& undo);
template <Colour Us>
void unmakeMove(Board_0x88& board, Move move, const UndoRecord& undo);
template <Colour Us>
void makeMovePerft(Board_0x88& board, Move move, UndoRecord& undo);
template <Colour Us>
void unmakeMovePerft(Board_0x88& board, Move move, const UndoRecord& undo);

/// The key after the move; wrong after castling, promotion, en passant, a double step that allows
/// it, and when rights are lost. For a prefetch, which may miss; a table's move need not be
/// playable.
inline Key likelyKeyAfter(const Board_0x88& board, Move move) {
    const Square from = fromSquare(move);
    const Square to = toSquare(move);
    const Colour us = board.toMove();
    const PieceType mover = board.pieceAt(from);
    const PieceType victim = board.pieceAt(to);
    if (mover == NoPiece) return board.record().key;
    Key key = board.record().key ^ zobrist.side ^ zobrist.pieceSquare(us, mover, from64(move)) ^
              zobrist.pieceSquare(us, mover, to64(move));
    if (victim != NoPiece) key ^= zobrist.pieceSquare(~us, victim, to64(move));
    if (board.epSquare != NoSquare) key ^= zobrist.epFile[fileOf(board.epSquare)];
    return key;
}

/// What a null move changes besides the side to move.
struct NullUndo {
    std::uint8_t castlingRights;
    Square epSquare;
    std::uint8_t halfmoveClock;
};
void makeNullMove(Board_0x88& board, NullUndo& undo);
void unmakeNullMove(Board_0x88& board, const NullUndo& undo);

}  // namespace vatro
