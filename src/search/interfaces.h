// search/interfaces.h - what the search needs from the layers above it.
//
// The search reaches upwards only through these classes and SearchReporter, so it is linked and
// tested without the engine.
#pragma once

#include "board/move.h"

namespace vatro {

struct PrincipalVariation;

/// What a thread's search asks of the player that runs all threads. Called by thread 0 alone.
class SearchInterface {
  public:
    virtual ~SearchInterface() = default;

    /// True when the time for the move is used up.
    virtual bool timeout() = 0;
    /// Reports a new best line.
    virtual void printThinking(unsigned depth, int score, const PrincipalVariation& line) = 0;
    /// Reports the counters of all threads. Tells the helpers to stop first.
    virtual void printStatistics() = 0;
};

/// What the player asks of the engine that keeps the game. Called on search thread 0.
class EngineInterface {
  public:
    virtual ~EngineInterface() = default;

    /// Plays the chosen move in the game and announces it, unless the result has been discarded:
    /// a stop may come after the decision, or with a random or book move.
    virtual void makeEngineMove(Move move) = 0;
    /// The search has ended and its thread is idle.
    virtual void searchEnded() = 0;
};

}  // namespace vatro
