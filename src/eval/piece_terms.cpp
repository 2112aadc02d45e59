// eval/piece_terms.cpp - weights of mobility and of open files.
#include "eval/piece_terms.h"

namespace vatro {
namespace {

struct MobilityWeight {
    ScorePair perSquare;
    ScorePair trapped;  // on top when there is no square at all
};
// By piece type. Tuned; no derivation.
constexpr MobilityWeight mobilityWeights[PieceTypeCount] = {
    {},                      // NoPiece
    {},                      // Pawn
    {{4, 8}, {-13, -55}},    // Knight
    {{10, 6}, {-10, -20}},   // Bishop
    {{-2, 13}, {-15, -30}},  // Rook
    {{4, 13}, {-30, -60}},   // Queen
    {},                      // King
};

constexpr std::array<std::array<ScoreSum, MobilityCount>, PieceTypeCount> buildMobilityTerms() {
    std::array<std::array<ScoreSum, MobilityCount>, PieceTypeCount> table{};
    for (int type = 0; type < PieceTypeCount; ++type) {
        const MobilityWeight& weight = mobilityWeights[type];
        table[type][0] = {weight.trapped.mg, weight.trapped.eg};
        for (int count = 1; count < MobilityCount; ++count) {
            table[type][count] = {count * weight.perSquare.mg, count * weight.perSquare.eg};
        }
    }
    return table;
}

}  // namespace

constexpr std::array<std::array<ScoreSum, MobilityCount>, PieceTypeCount> mobilityTerms =
    buildMobilityTerms();

// Tuned; no derivation.
constexpr std::array<ScoreSum, FileCountSize> rookOpenFileBonus = {{
    {0, 0},
    {68, 42},
    {88, 20},
    {86, 9},
    {82, -2},
    {35, -6},
    {41, -21},
    {3, -45},
    {0, 0},
}};
constexpr std::array<ScoreSum, FileCountSize> rookHalfOpenFileBonus = {{
    {0, 0},
    {25, -42},
    {36, 4},
    {44, 2},
    {55, 8},
    {53, 10},
    {24, 19},
    {0, 20},
    {0, 0},
}};

}  // namespace vatro
