// tests/eval/endgame_test.cpp - material, the scale of hard endings, and positions without pawns.
#include <iterator>

#include <gtest/gtest.h>

#include "eval/endgame_rules.h"
#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

TEST(Material, PhaseValuesAndMatingMaterial) {
    struct Case {
        const char* fen;
        int phase;
        ScorePair material;
        bool whiteCanWin, blackCanWin;
    };
    const Case cases[] = {
        {startPositionFEN, 24, {0, 0}, true, true},
        {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", 2, {696, 654}, true, false},
        {"4k3/8/8/8/8/8/8/2B1KB2 w - - 0 1", 2, {846, 875}, true, false},    // with the pair
        {"4k3/8/8/8/8/8/8/1N2K1N1 w - - 0 1", 2, {778, 692}, false, false},  // no pawns for them
        {"4k3/8/8/8/8/8/8/1NN1K1N1 w - - 0 1", 3, {1167, 1038}, true, false},
        {"1b2k1n1/8/8/8/8/8/8/4K3 w - - 0 1", 2, {-791, -749}, false, true},
        {"4k3/8/8/8/8/8/PPPPPPPP/RN2K3 w - - 0 1",
         3,
         {1016 + 576 + 445, 800 + 558 + 394},
         true,
         false},
        {"4k3/8/8/QQQQQQQQ/8/8/8/4K3 w - - 0 1", 24, {9760, 9784}, true, false},
    };
    for (const Case& c : cases) {
        const MaterialInfo info = computeMaterial(*boardOf(c.fen));
        EXPECT_EQ(info.phase, c.phase) << c.fen;
        EXPECT_EQ(info.material, c.material)
            << c.fen << ' ' << info.material.mg << ' ' << info.material.eg;
        EXPECT_EQ(info.canWin[White], c.whiteCanWin) << c.fen;
        EXPECT_EQ(info.canWin[Black], c.blackCanWin) << c.fen;
    }
}

TEST(Material, TheTableSaysWhatIsComputed) {
    MaterialTable materials;
    TestRandom random(14);
    EXPECT_EQ(materials.find(*boardOf("8/8/8/8/8/8/8/8 w - -")).phase, 0);  // as an unused entry
    for (int game = 0; game < 60; ++game) {  // far more material than the table holds
        forEachRandomPosition(richPositions[random.below(std::size(richPositions))], 200, random,
                              [&](const Board_0x88& board) {
                                  const MaterialInfo expected = computeMaterial(board);
                                  const MaterialInfo& found = materials.find(board);
                                  ASSERT_EQ(found.phase, expected.phase) << board.toFEN();
                                  ASSERT_EQ(found.material, expected.material) << board.toFEN();
                                  for (const Colour colour : {White, Black}) {
                                      ASSERT_EQ(found.canWin[colour], expected.canWin[colour])
                                          << board.toFEN();
                                  }
                              });
    }
}

TEST(EndgameRule, FourPieceEndings) {
    const std::pair<const char*, int> cases[] = {
        {"4kn2/8/8/8/8/8/8/R3K3 w - - 0 1", 12},  // rook against knight
        {"4kb2/8/8/8/8/8/8/R3K3 w - - 0 1", 25},  // rook against bishop
        {"4kr2/8/8/8/8/8/8/R3K3 w - - 0 1", 100},
        {"4kn2/8/8/8/8/8/P7/R3K3 w - - 0 1", 100},  // five pieces
        {"8/6k1/8/8/7P/8/8/2B1K3 w - - 0 1", 100},  // bishop and rook pawn: the right bishop
        {"8/6k1/8/8/7P/8/8/3BK3 w - - 0 1", 0},     // the wrong one, the corner within reach
        {"8/8/4k3/8/7P/8/8/3BK3 w - - 0 1", 50},
        {"8/8/4k3/8/6P1/8/8/3BK3 w - - 0 1", 100},
        {"8/1k6/8/8/P7/8/8/2B1K3 b - - 0 1", 0},  // a8 is light, the bishop dark
        {"8/8/8/8/3Q4/8/pK6/1k6 w - - 0 1", 25},  // queen against a far pawn
        {"6K1/7P/8/8/3q4/8/8/k7 b - - 0 1", 25},
        {"8/8/8/8/3Q4/2k5/p7/4K3 w - - 0 1", 100},
        {"8/8/8/8/3Q4/8/2pk4/6K1 w - - 0 1", 25},  // a bishop pawn
        {"8/8/8/8/3Q4/8/k1p5/6K1 w - - 0 1", 100},
        {"8/8/8/8/3Q4/8/5pk1/K7 w - - 0 1", 25},  // f2 is c2, g2 is b2
        {"8/8/8/8/3Q4/8/1p6/k5K1 w - - 0 1", 100},
        {"8/8/8/8/3Q4/p7/k7/6K1 w - - 0 1", 100},  // two steps from promotion
    };
    for (const auto& [fen, percent] : cases) {
        EXPECT_EQ(endgameRule(*boardOf(fen)), percent) << fen;
        EXPECT_EQ(endgameRule(*boardOf(mirroredFEN(fen))), percent) << fen;
    }
}

// A bishop by promotion can stand behind the pawn in the piece list.
TEST(EndgameRule, FindsAPromotedBishop) {
    const auto board = boardOf("8/6k1/8/8/8/8/8/4K3 w - - 0 1");
    putInSlot(*board, H4, Pawn, White, FirstPawnSlot);        // a dark square
    putInSlot(*board, D1, Bishop, White, FirstPawnSlot + 1);  // a light one
    EXPECT_EQ(endgameRule(*board), 0);
}

TEST(Pawnless, DrivesTheWeakKing) {
    const std::pair<const char*, int> cases[] = {
        {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", 659},
        {"8/8/8/4k3/8/8/8/R3K3 w - - 0 1", 473},
        {"8/8/8/4k3/8/8/8/R3K3 b - - 0 1", -469},
        {"4k2r/8/8/8/4K3/8/8/R7 w - - 0 1", 190},   // level: Black is the stronger side
        {"4kn2/8/8/8/8/8/8/R3K3 w - - 50 1", 310},  // not scaled
    };
    Evaluator evaluate;
    for (const auto& [fen, score] : cases) {
        EXPECT_EQ(evaluate(fen), score) << fen;
    }
}

TEST(Pawnless, BishopAndKnightMateInTheBishopsCorner) {
    Evaluator evaluate;
    const auto term = [&](const char* fen) {
        EvalBreakdown terms;
        evaluateWithBreakdown(*boardOf(fen), evaluate.memory, terms);
        const auto& row = terms.terms[static_cast<int>(EvalRow::SafeCorner)];
        return row[White].mg - row[Black].mg;
    };
    EXPECT_EQ(term("7k/8/8/8/8/8/8/K4BN1 w - - 0 1"), 112);  // a light bishop
    EXPECT_EQ(term("k7/8/8/8/8/8/8/K4BN1 w - - 0 1"), 0);
    EXPECT_EQ(term("7k/8/8/8/8/8/8/K1B3N1 w - - 0 1"), 0);  // a dark one
    EXPECT_EQ(term("8/1k6/8/8/8/8/8/K1B3N1 w - - 0 1"), 96);
    EXPECT_EQ(term("k4bn1/8/8/8/8/8/8/7K w - - 0 1"), -112);
    EXPECT_EQ(term("k4bn1/8/8/8/8/8/8/K7 w - - 0 1"), 0);
    EXPECT_EQ(term("7k/8/8/8/8/8/8/KN3BN1 w - - 0 1"), 0);  // five pieces
}

}  // namespace
}  // namespace vatro
