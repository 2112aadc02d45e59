// eval/passed_pawns.cpp - what passed pawns are worth.
#include "eval/passed_pawns.h"

namespace vatro {
namespace {

// By the number of steps to promotion. Tuned; no derivation.
constexpr ScorePair bonusBySteps[PassedStepCount] = {
    {0, 0},   {97, 188}, {76, 133}, {20, 84},   {16, 57}, {8, 36},
    {32, 20}, {15, 32},  {26, 40},  {-15, -60}, {1, 2},   {1, 1},
};

constexpr std::array<ScoreSum, PassedStepCount> dividedBonus(int divisor) {
    std::array<ScoreSum, PassedStepCount> table;
    for (int steps = 0; steps < PassedStepCount; ++steps) {
        table[steps] = {bonusBySteps[steps].mg / divisor, bonusBySteps[steps].eg / divisor};
    }
    return table;
}

}  // namespace

constexpr std::array<ScoreSum, PassedStepCount> passedPawnBonus = dividedBonus(1);
constexpr std::array<ScoreSum, PassedStepCount> blockedPawnBonus = dividedBonus(4);

// Tuned; no derivation.
constexpr std::array<ScoreSum, UnstoppableStepCount> unstoppablePawnBonus = {{
    {0, 0},
    {193, 420},
    {143, 339},
    {95, 90},
    {-33, 72},
    {-38, 47},
    {-9, 55},
}};

}  // namespace vatro
