// tools/game_statistics.h - what is counted about games, and the table that shows it.
//
// How long a piece stands on a square is added up when it leaves the square, not at every position:
// a move then costs a few additions instead of a walk over all pieces.
#pragma once

#include <cstdint>
#include <string>

#include "board/game.h"

namespace vatro {

struct GameStatistics {
    using Count = std::uint64_t;

    Count games = 0;
    Count positions = 0;  // one for each move
    Count captures = 0;   // ordinary ones: neither en passant nor with promotion
    Count promotions = 0;
    Count castlings = 0;
    Count epCaptures = 0;
    Count doubleSteps = 0;
    Count movesOfPiece[PieceTypeCount] = {};
    Count capturesOfPiece[PieceTypeCount] = {};  // with en passant
    Count promotionsInto[PieceTypeCount] = {};
    Count presence[ColourCount][PieceTypeCount][64] = {};  // positions with the piece on a square
    Count pieceCount[ColourCount][SlotCount + 1] = {};     // positions with so many pieces
    Count gameLength[Game::MaxMoves + 1] = {};             // games with so many moves
};

/// Counts one game while it is played.
class GameCounter {
  public:
    /// `record` holds the start of the game. Both are the caller's and outlive the counter.
    GameCounter(const Game& record, GameStatistics& sums);

    /// To be called before each move is played, after it, and when the game is over.
    void beforeMove(Move move);
    void afterMove();
    void endOfGame();

  private:
    /// Adds up the stay of the piece on a square. The next move, or the game's end, removes it.
    void leave(Square64 square);
    void relocate(Square64 from, Square64 to);
    unsigned nextPosition() const { return game.plyCount + 1; }

    const Game& game;
    GameStatistics& stats;
    unsigned arrival[64];  // by Square64: the first position with the piece that stands there
};

/// The statistics as lines of text. There must be a game and a position.
std::string statisticsText(const GameStatistics& stats);

}  // namespace vatro
