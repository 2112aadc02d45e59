// eval/score_sum.h - score pairs added up in one word, and their blend by the game phase.
#pragma once

#include <cstdint>

#include "board/types.h"

namespace vatro {

/// A sum of score pairs in one word, so that one addition or multiplication serves both: the end
/// game in the high half, plus the middle game with its sign. Both are exact as long as the final
/// sums fit in 16 bits; all terms of a side's 16 pieces together stay below 16000.
class ScoreSum {
  public:
    constexpr ScoreSum() = default;
    constexpr ScoreSum(int middleGame, int endGame)
        : word((static_cast<std::uint32_t>(endGame) << 16) +
               static_cast<std::uint32_t>(middleGame)) {}

    /// Adding 0x8000 gives back what a negative middle game has borrowed from the high half.
    constexpr ScorePair pair() const {
        return {static_cast<std::int16_t>(word), static_cast<std::int16_t>((word + 0x8000) >> 16)};
    }

    constexpr ScoreSum& operator+=(ScoreSum other) { return *this = *this + other; }
    constexpr ScoreSum& operator-=(ScoreSum other) { return *this = *this - other; }
    friend constexpr ScoreSum operator+(ScoreSum a, ScoreSum b) {
        return fromWord(a.word + b.word);
    }
    friend constexpr ScoreSum operator-(ScoreSum a, ScoreSum b) {
        return fromWord(a.word - b.word);
    }
    friend constexpr ScoreSum operator*(int n, ScoreSum a) {
        return fromWord(static_cast<std::uint32_t>(n) * a.word);
    }

  private:
    static constexpr ScoreSum fromWord(std::uint32_t word) {
        ScoreSum sum;
        sum.word = word;
        return sum;
    }
    std::uint32_t word = 0;
};

constexpr int FullPhase = 24;  // the pieces of the start position

/// The blend of a pair: all middle game at FullPhase, all end game at 0; truncates toward zero.
constexpr int taper(ScorePair pair, int phase) {
    return (pair.mg * phase + pair.eg * (FullPhase - phase)) / FullPhase;
}
constexpr int taper(ScoreSum sum, int phase) { return taper(sum.pair(), phase); }

}  // namespace vatro
