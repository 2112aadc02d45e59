// search/interfaces.h - what the search needs from the layers above it.
//
// The search reaches upwards only through these classes and SearchReporter, so it is linked and
// tested without the engine.
#pragma once

#include "board/move.h"
#include "search/node_window.h"

namespace vatro {

struct PrincipalVariation;

/// A line of the root and what is known of its score.
struct RootLine {
    unsigned depth;  // of the iteration; 0 when the tablebases know the score of every root move
    int score;       // for the side to move; a mate score counts plies, see eval/scores.h
    Bound bound;     // a score outside its window is only a bound
    unsigned rank;   // 1: the best line, 2: the best one with another first move, ...
    const PrincipalVariation& line;
};

/// What a thread's search asks of the player that runs all threads. Called by thread 0 alone.
class SearchInterface {
  public:
    virtual ~SearchInterface() = default;

    /// True when the time for the move is used up.
    virtual bool timeout() = 0;
    /// Reports a new best line, or that the score lies outside the window.
    virtual void printThinking(const RootLine& line) = 0;
    /// Reports the counters of all threads. Tells the helpers to stop first.
    virtual void printStatistics() = 0;
};

/// What the player asks of the engine that keeps the game. Called on search thread 0.
class EngineInterface {
  public:
    virtual ~EngineInterface() = default;

    /// Takes the chosen move, unless the result has been discarded: a stop may come after the
    /// decision, or with a random or book move. A search without a clock, too, ends with a move.
    virtual void makeEngineMove(Move move) = 0;
    /// The search has ended and its thread is idle.
    virtual void searchEnded() = 0;
};

}  // namespace vatro
