// tests/eval/print_evaluation_test.cpp - the printed table, to the character.
#include "eval/print_evaluation.h"

#include <gtest/gtest.h>

#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

// The rows that tell stored pawns from computed ones are put in by the caller.
std::string pawnEndingTable(const std::string& pawnRows) {
    return R"(==============================================================================
Evaluation part                    w-MG w-EG (wTot)   b-MG b-EG (bTot)   Total
==============================================================================
Material                             22  -27 ( -14)      0    0 (   0)    -14
PST                                 287  142 ( 178)    195  141 ( 154)     23
Passed pawns                         20   84 (  68)      0    0 (   0)     68
)" + pawnRows +
           R"(Knights                              20   40 (  35)      0    0 (   0)     35
Bishops                               0    0 (   0)     80   48 (  56)    -56
Rooks                                39  112 (  93)     72  124 ( 111)    -17
Queens                                0    0 (   0)      0    0 (   0)      0
King safety                           0    0 (   0)    -15    7 (   1)     -1
King tropism                          0    0 (   0)      9   -3 (   0)      0
M: King edge dist                     0    0 (   0)      0    0 (   0)      0
M: King dist                          0    0 (   0)      0    0 (   0)      0
M: KBNK safe corner                   0    0 (   0)      0    0 (   0)      0
Side to move                          0    0 (   0)     24    0 (   6)     -6
==============================================================================
Phase =   6          Scaling factor = 0.99          Total evaluation =     -2
==============================================================================
)";
}

TEST(PrintEvaluation, ShowsEveryTerm) {
    Evaluator evaluate;
    const auto board = boardOf("2r3k1/p4pp1/1p5p/3P4/P1b5/2N3P1/5P1P/3R2K1 b - - 10 30");
    EXPECT_EQ(evaluationText(*board, evaluate.pawnHash),
              pawnEndingTable(
                  R"(Weak pawns                          -62  -26 ( -35)      0    0 (   0)    -35
Pawn structure                        0    0 (   0)      0    0 (   0)      0
)"));
    EXPECT_EQ(evaluationText(*board, evaluate.pawnHash),
              pawnEndingTable(
                  R"(Weak pawns                            0    0 (   0)      0    0 (   0)      0
Pawn structure                      -62  -26 ( -35)      0    0 (   0)    -35
)"));
}

TEST(PrintEvaluation, WithoutPawns) {
    Evaluator evaluate;
    const auto board = boardOf("8/8/8/4k3/8/8/8/R3K3 b - - 0 1");
    const std::string text = evaluationText(*board, evaluate.pawnHash);
    const std::string end =
        R"(M: King edge dist                     0    0 (   0)    192  192 ( 192)   -192
M: King dist                          6    6 (   6)      0    0 (   0)      6
M: KBNK safe corner                   0    0 (   0)      0    0 (   0)      0
Side to move                          0    0 (   0)     24    0 (   2)     -2
==============================================================================
Phase =   2          Scaling factor = 1.00          Total evaluation =    469
==============================================================================
)";
    ASSERT_GT(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST(PrintEvaluation, NothingCountsWhenNobodyCanWin) {
    Evaluator evaluate;
    const std::string text =
        evaluationText(*boardOf("4k3/8/8/8/8/8/8/3NK3 w - - 0 1"), evaluate.pawnHash);
    EXPECT_NE(
        text.find("Material                              0    0 (   0)      0    0 (   0)      0"),
        std::string::npos);
    EXPECT_NE(
        text.find("Phase =   1          Scaling factor = 0.00          Total evaluation =      0"),
        std::string::npos);
}

}  // namespace
}  // namespace vatro
