// eval/pawnless.cpp - positions without pawns: drive the weaker king to the edge and follow it.
//
// Not symmetric: with level material Black counts as the stronger side.
#include "eval/pawnless.h"

#include <algorithm>

#include "board/geometry.h"
#include "eval/breakdown.h"
#include "eval/endgame_rules.h"

namespace vatro {
namespace {

// Tuned; no derivation.
constexpr int StrongSideLead = 190;  // White's material lead above which it is the stronger side
constexpr int EdgeDistanceWeight = 64;
constexpr int KingDistanceWeight = 2;
constexpr int SafeCornerWeight = 16;
constexpr int FarthestDistance = 7;

/// Steps to the nearest edge, 0 to 3.
int edgeDistance(Square64 square) {
    const int file = fileOf(square);
    const int rank = rankOf(square);
    return std::min(std::min(file, 7 - file), std::min(rank, 7 - rank));
}

bool hasBishopAndKnight(const Board_0x88& board, Colour colour) {
    return board.count(colour, Bishop) == 1 && board.count(colour, Knight) == 1;
}

/// How close the weak king is to the corners where bishop and knight do not mate.
int safeCornerTerm(const Board_0x88& board, Colour strong, Square64 weakKing) {
    const SquareMask bishops = board.pieceMask[strong][Bishop];
    if (!bishops) return 0;
    const bool onDark = squareColour(lowestSquare(bishops)) == 1;
    const Square64 first = as64(onDark ? A8 : A1);
    const Square64 second = as64(onDark ? H1 : H8);
    const int distance = std::min(kingDistance(weakKing, first), kingDistance(weakKing, second));
    return SafeCornerWeight * (FarthestDistance - distance);
}

}  // namespace

template <typename Breakdown>
int pawnlessEvaluation(const Board_0x88& board,
                       const MaterialInfo& material,
                       Breakdown& breakdown) {
    int score[ColourCount] = {taper(material.material, material.phase), 0};
    breakdown.add(EvalRow::Material, White, material.material);
    const Colour strong = score[White] > StrongSideLead ? White : Black;
    const Colour weak = ~strong;
    const auto addTo = [&](Colour colour, EvalRow row, int term) {
        score[colour] += term;
        breakdown.add(row, colour, ScorePair(term, term));
    };

    score[board.sideToMove] += material.phase;
    breakdown.add(EvalRow::SideToMove, board.toMove(), ScorePair(FullPhase, 0));
    if (board.hasKing(weak)) {
        const Square64 weakKing = as64(board.kingSquare(weak));
        addTo(weak, EvalRow::EdgeDistance, EdgeDistanceWeight * edgeDistance(weakKing));
        if (board.hasKing(strong)) {
            const int distance = kingDistance(weakKing, as64(board.kingSquare(strong)));
            addTo(strong, EvalRow::KingDistance,
                  KingDistanceWeight * (FarthestDistance - distance));
        }
        if (board.totalCount() == EndgamePieces &&
            (hasBishopAndKnight(board, White) || hasBishopAndKnight(board, Black))) {
            addTo(strong, EvalRow::SafeCorner, safeCornerTerm(board, strong, weakKing));
        }
    }
    return score[board.sideToMove] - score[~board.toMove()];
}

template int pawnlessEvaluation(const Board_0x88&, const MaterialInfo&, NoBreakdown&);
template int pawnlessEvaluation(const Board_0x88&, const MaterialInfo&, EvalBreakdown&);

}  // namespace vatro
