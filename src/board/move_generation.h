// src/board/move_generation.h - the legal moves of a position, in a fixed order.
//
// Counts per root move, move ordering and node counts follow from the order: en passant, then the
// pieces in the order of the piece list, then castling.
#pragma once

#include "board/attacks.h"
#include "board/board.h"

namespace vatro {

/// Appends all legal moves of the side to move. `info` holds its pins and checkers.
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list);
/// The same for a list of its own: finds pins and checkers itself.
void generateLegalMoves(const Board_0x88& board, MoveList& list);
/// How many moves generateLegalMoves would list.
unsigned countLegalMoves(const Board_0x88& board);
/// What pickRandomMove would draw from the list of generateLegalMoves, without making that list.
Move drawLegalMove(const Board_0x88& board);

// The same for a side to move that the caller knows.
template <Colour Us>
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list);
template <Colour Us>
unsigned countLegalMoves(const Board_0x88& board, const PinInfo& info);
template <Colour Us>
bool hasOnlyOneLegalMove(const Board_0x88& board, const PinInfo& info);
template <Colour Us>
Move drawLegalMove(const Board_0x88& board);

}  // namespace vatro
