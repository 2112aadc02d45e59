// src/search/interfaces.h - what the search needs from the floors above it.
//
// The search reports upwards only through these classes, so it is linked and tested without the
// engine.
#pragma once

#include <cstdint>

#include "board/move.h"

namespace vatro {

struct PrincipalVariation;

/// What a thread's search asks of the player that runs it.
class SearchInterface {
  public:
    virtual ~SearchInterface() = default;

    /// True when the time for the move is used up. Asked by thread 0 alone.
    virtual bool timeout() = 0;
    /// Reports a new best line.
    virtual void printThinking(unsigned depth, int score, const PrincipalVariation& line) = 0;
    /// Reports the counters of all threads. Ends the helpers' search first.
    virtual void printStatistics() = 0;
};

/// What the player asks of the engine that keeps the game. Called on search thread 0.
class EngineInterface {
  public:
    virtual ~EngineInterface() = default;

    /// Plays the chosen move in the game and announces it.
    virtual void makeEngineMove(Move move) = 0;
    /// The search has ended and its thread is idle.
    virtual void searchEnded() = 0;
};

}  // namespace vatro
