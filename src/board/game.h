// board/game.h - a game: the board and the moves that led to it.
#pragma once

#include "base/random.h"
#include "board/board.h"
#include "board/move.h"

namespace vatro {

/// The board holds the position that the first `plyCount` moves of `moveList` lead to.
struct Game {
    /// Moves that a game can have: one less than the board has ply records.
    static constexpr unsigned MaxMoves = PlyRecordCount - 1;

    /// Sets a position and empties the move list. False when the FEN is refused; the board then
    /// holds an unfinished position, see Board_0x88::setupFromFEN.
    [[nodiscard]] bool setup(const char* fen);

    bool isFull() const { return plyCount >= MaxMoves; }
    /// Plays a legal move. The game must not be full.
    void play(Move move);
    /// Takes the last move back. There must be one.
    void takeBack();

    Board_0x88 board;
    std::uint32_t plyCount = 0;
    Move moveList[MaxMoves] = {};
    UndoRecord undoList[MaxMoves] = {};
};

/// One of the moves, each with the same chance. NoMove when there is none.
Move pickRandomMove(const MoveList& legalMoves, Random& random);

}  // namespace vatro
