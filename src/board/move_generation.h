// board/move_generation.h - the legal moves of a position, in a fixed order.
//
// Counts per root move, move ordering and node counts follow from the order: en passant, then the
// pieces in the order of the piece list, then castling.
#pragma once

#include <string_view>

#include "board/attacks.h"
#include "board/board.h"

namespace vatro {

/// Appends all legal moves of the side to move. `info` holds its pins and checkers.
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list);
/// The same; finds pins and checkers itself.
void generateLegalMoves(const Board_0x88& board, MoveList& list);
/// The legal move with this text, e2e4 or e7e8q in letters of either case; NoMove when there is
/// none.
Move findLegalMove(const Board_0x88& board, std::string_view text);
/// How many moves generateLegalMoves would list.
unsigned countLegalMoves(const Board_0x88& board);

// The same where the caller knows the side to move.
template <Colour Us>
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list);
template <Colour Us>
unsigned countLegalMoves(const Board_0x88& board, const PinInfo& info);
/// True when the side to move is in check and has no legal move.
template <Colour Us>
bool isCheckmated(const Board_0x88& board);
template <Colour Us>
bool hasOnlyOneLegalMove(const Board_0x88& board, const PinInfo& info);

}  // namespace vatro
