// board/score_sum.h - score pairs added up in one word.
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
        return {middleGame(), static_cast<std::int16_t>((word + 0x8000) >> 16)};
    }
    constexpr std::int16_t middleGame() const { return static_cast<std::int16_t>(word); }

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
    friend constexpr bool operator==(ScoreSum a, ScoreSum b) = default;

  private:
    static constexpr ScoreSum fromWord(std::uint32_t word) {
        ScoreSum sum;
        sum.word = word;
        return sum;
    }
    std::uint32_t word = 0;
};

}  // namespace vatro
