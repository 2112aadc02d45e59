// eval/print_evaluation.cpp - the evaluation of a position as a table of its terms.
//
// The rows are a display: the evaluation tapers sums and clamps them, so that its total need not
// be the sum of the column.
#include "eval/print_evaluation.h"

#include "base/text.h"
#include "eval/evaluate.h"

namespace vatro {
namespace {

struct PrintedRow {
    EvalRow row;
    const char* label;
};
constexpr PrintedRow printedRows[] = {
    {EvalRow::Material, "Material"},
    {EvalRow::PieceSquare, "PST"},
    {EvalRow::PassedPawns, "Passed pawns"},
    {EvalRow::WeakPawns, "Weak pawns"},
    {EvalRow::PawnStructure, "Pawn structure"},
    {EvalRow::Knights, "Knights"},
    {EvalRow::Bishops, "Bishops"},
    {EvalRow::Rooks, "Rooks"},
    {EvalRow::Queens, "Queens"},
    {EvalRow::KingSafety, "King safety"},
    {EvalRow::KingTropism, "King tropism"},
    {EvalRow::EdgeDistance, "M: King edge dist"},
    {EvalRow::KingDistance, "M: King dist"},
    {EvalRow::SafeCorner, "M: KBNK safe corner"},
    {EvalRow::SideToMove, "Side to move"},
};
static_assert(std::size(printedRows) == static_cast<std::size_t>(EvalRow::Count));

constexpr char header[] =
    "Evaluation part                    w-MG w-EG (wTot)   b-MG b-EG (bTot)   Total\n";
constexpr std::size_t LineLength = 78;

std::string rowText(const PrintedRow& printed, const EvalBreakdown& breakdown, int phase) {
    const auto& terms = breakdown.terms[static_cast<int>(printed.row)];
    const ScorePair white = terms[White];
    const ScorePair black = terms[Black];
    // Not as a pair: the difference of two columns can exceed 16 bits.
    const int difference =
        ((white.mg - black.mg) * phase + (white.eg - black.eg) * (FullPhase - phase)) / FullPhase;
    return formatted("%-32s   %4d %4d (%4d)   %4d %4d (%4d)   %4d\n", printed.label, white.mg,
                     white.eg, taper(white, phase), black.mg, black.eg, taper(black, phase),
                     difference);
}

}  // namespace

std::string evaluationText(const Board_0x88& board, PawnHashTable& pawnHash) {
    const MaterialInfo material = computeMaterial(board);
    Counter uncounted;
    EvalMemory memory{pawnHash, uncounted};
    EvalBreakdown breakdown;
    const int score = evaluateWithBreakdown(board, memory, breakdown);

    std::string rule(LineLength, '=');
    rule += '\n';
    std::string text = rule + header + rule;
    for (const PrintedRow& printed : printedRows) {
        text += rowText(printed, breakdown, material.phase);
    }
    text += rule;
    text +=
        formatted("Phase = %3d          Scaling factor = %3.2f          Total evaluation = %6d\n",
                  material.phase, scaleFactor(board, material) / 100.0,
                  board.toMove() == White ? score : -score);
    return text + rule;
}

}  // namespace vatro
