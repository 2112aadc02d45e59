// src/board/move_ordering.h - how promising a move looks before it is searched.
#pragma once

#include "board/attacks.h"
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

/// Appends all legal moves with their scores: good captures and promotions first, then killers,
/// then quiet moves by their piece-square gain.
template <Colour Us>
void generateScoredMoves(const Board_0x88& board, const PinInfo& info, MoveList& list);

/// Appends the legal captures and promotions to a queen, scored by victim and attacker alone.
template <Colour Us>
void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list);
void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list);

}  // namespace vatro
