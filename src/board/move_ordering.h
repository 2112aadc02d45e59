// src/board/move_ordering.h - how promising a move looks before it is searched.
#pragma once

#include "board/board.h"

namespace vatro {

/// True when a capture loses material by rule of thumb. `gain` receives what the move wins in
/// centipawns; it stays as it is for a castling.
bool isBadCapture(const Board_0x88& board, Move move, int& gain);
template <Colour Us>
bool isBadCapture(const Board_0x88& board, Move move, int& gain);

/// True for a move that takes nothing and does not promote.
inline bool isQuiet(const Board_0x88& board, Move move) {
    return board.pieceOn[toSquareOf(move)] == NoPiece && (typeOf(move) & Promotion) == 0;
}
static_assert((EnPassant & Promotion) && !(Castling & Promotion) && !(Normal & Promotion));

/// Scores all legal moves: good captures and promotions first, then killers, then quiet moves by
/// their piece-square gain.
template <Colour Us>
void scoreMoves(const Board_0x88& board, MoveList& list);

/// Scores captures by victim and attacker alone.
void scoreCaptures(const Board_0x88& board, MoveList& list);

}  // namespace vatro
