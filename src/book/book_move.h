// book/book_move.h - from the moves of a Polyglot book to move words.
#pragma once

#include <cstdint>

#include "board/board.h"

namespace vatro {

/// The legal move of the side to move that a book's move word stands for; NoMove when there is
/// none.
///
/// The word: bits 0-2 to-file, 3-5 to-rank, 6-8 from-file, 9-11 from-rank, 12-14 promotion (0 none,
/// 1 knight ... 4 queen). Castling is the king's capture of its own rook, or its move of two
/// squares.
[[nodiscard]] Move fromBookMove(const Board_0x88& board, std::uint16_t bookMove);

}  // namespace vatro
