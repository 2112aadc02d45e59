// tests/eval/evaluate_test.cpp - the whole evaluation: symmetry, lazy cut, clamp, odd positions.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "eval/print_evaluation.h"
#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

bool hasPawns(const Board_0x88& board) {
    return board.count(White, Pawn) + board.count(Black, Pawn) > 0;
}

TEST(Evaluate, ExchangingTheColoursKeepsTheScore) {
    Evaluator evaluate;
    TestRandom random(1);
    unsigned compared = 0;
    for (const char* start : richPositions) {
        forEachRandomPosition(start, 150, random, [&](const Board_0x88& board) {
            if (!hasPawns(board) || board.totalCount() <= EndgamePieces) return;
            const std::string fen = board.toFEN();
            EXPECT_EQ(evaluate(board), evaluate(mirroredFEN(fen))) << fen;
            ++compared;
        });
    }
    EXPECT_GT(compared, 300U);
}

TEST(Evaluate, StoredPawnsGiveTheScoreOfComputedOnes) {
    Evaluator warm;
    TestRandom random(2);
    unsigned evaluated = 0;
    for (const char* start : richPositions) {
        forEachRandomPosition(start, 60, random, [&](const Board_0x88& board) {
            if (!hasPawns(board) || board.halfmoveClock >= 100) return;
            warm.pawnHash.clear();
            const std::uint64_t hitsBefore = warm.hits;
            const int computed = warm(board);
            EXPECT_EQ(warm.hits, hitsBefore);
            EXPECT_EQ(warm.allTerms(board), computed) << board.toFEN();
            EXPECT_EQ(warm.hits, hitsBefore + 1);
            ++evaluated;
        });
    }
    EXPECT_GT(evaluated, 100U);
}

// Whose move it is counts in pawn endings; the pawn hash counts its hits however a score was found.
TEST(Evaluate, PositionsMetBeforeKeepTheirScore) {
    Evaluator experienced;
    TestRandom random(11);
    for (const char* start : {startPositionFEN, richPositions[1], richPositions[2],
                              "8/5k2/8/P7/8/6p1/8/2K5 w - - 0 1"}) {
        forEachRandomPosition(start, 60, random, [&](Board_0x88& board) {
            if (!hasPawns(board) || board.halfmoveClock >= 100) return;
            const std::uint64_t hitsBefore = experienced.hits;
            NullUndo undo;
            const int first = experienced(board);
            makeNullMove(board, undo);
            const int passed = experienced(board);
            EXPECT_EQ(passed, Evaluator().allTerms(board)) << board.toFEN();
            unmakeNullMove(board, undo);
            EXPECT_EQ(first, Evaluator().allTerms(board)) << board.toFEN();
            EXPECT_EQ(experienced(board), first) << board.toFEN();
            EXPECT_GE(experienced.hits, hitsBefore + 2);
        });
    }
}

TEST(Evaluate, LazyCutStaysOutsideTheWindowWithTheFullScore) {
    Evaluator evaluate;
    TestRandom random(3);
    unsigned cuts = 0;
    forEachRandomPosition(startPositionFEN, 200, random, [&](const Board_0x88& board) {
        const int full = evaluate(board);
        for (int alpha = full - 500; alpha < full + 500; alpha += 37) {
            const int beta = alpha + 1;
            const int score = evaluate(board, alpha, beta);
            if (score == full) continue;
            ++cuts;
            EXPECT_EQ(board.halfmoveClock, 0);  // scaled scores are not cut
            EXPECT_TRUE(std::max(score, full) <= alpha || std::min(score, full) >= beta)
                << board.toFEN() << ' ' << alpha << ": " << score << ", " << full;
        }
    });
    EXPECT_GT(cuts, 500U);
}

TEST(Evaluate, LazyCutLeavesThePawnHashAlone) {
    Evaluator evaluate;
    const auto board = boardOf("4k3/pppp4/8/8/8/8/PPPP4/R2RK3 w - - 0 1");
    const int lazy = evaluate.lazyScore(*board);
    EXPECT_GT(lazy, 1000);
    EXPECT_EQ(evaluate(*board, 0, lazy - 200), lazy - 200);
    EXPECT_EQ(evaluate.pawnHash.fillPercentage(), 0.0);
    EXPECT_NE(evaluate(*board, 0, lazy - 199), lazy - 200);  // the margin itself does not cut
    EXPECT_GT(evaluate.pawnHash.fillPercentage(), 0.0);
}

TEST(Evaluate, PositionalTermsAreClamped) {
    Evaluator evaluate;
    // One pawn that cannot be stopped is enough; more of them change only the base.
    for (const char* fen : {"8/8/PP6/8/7k/7p/8/K7 w - - 0 1", "8/8/PPPP4/8/7k/7p/8/K7 w - - 0 1"}) {
        const auto board = boardOf(fen);
        EXPECT_EQ(evaluate(*board), evaluate.lazyScore(*board) + 200) << fen;
        board->sideToMove = Black;
        EXPECT_EQ(evaluate(*board), evaluate.lazyScore(*board) - 200) << fen;
    }
}

TEST(Evaluate, HalfMoveClockScalesTheScore) {
    Evaluator evaluate;
    const std::string fen = "r1bqkb1r/pppp1ppp/2n2n2/8/2B1P3/5N2/PPPP1PPP/RNBQK2R w KQkq - ";
    const int full = evaluate(fen + "0 9");
    ASSERT_NE(full, 0);
    const std::pair<int, int> percentages[] = {{1, 99}, {50, 75}, {90, 19},
                                               {99, 1}, {100, 0}, {255, 0}};
    for (const auto& [clock, percent] : percentages) {
        EXPECT_EQ(evaluate(fen + std::to_string(clock) + " 9"), percent * full / 100) << clock;
    }
}

TEST(Evaluate, WhoCannotWinIsNeverAhead) {
    Evaluator evaluate;
    EXPECT_EQ(evaluate("4k3/8/8/8/8/p7/8/3BK3 w - - 0 1"), 0);
    EXPECT_EQ(evaluate("4k3/8/8/8/8/p7/8/3BK3 b - - 0 1"), 0);
    EXPECT_LT(evaluate("8/8/8/8/8/pp5k/pp6/7K w - - 0 1"), -500);
    EXPECT_GT(evaluate("8/8/8/8/8/pp5k/pp6/7K b - - 0 1"), 500);
    for (const char* nobody : {"4k3/8/8/8/8/8/8/3NK3 w - - 0 1", "4k3/8/8/8/8/8/8/2NNK3 b - - 0 1",
                               "2b1k3/8/8/8/8/8/8/3NK3 w - - 0 1"}) {
        EXPECT_EQ(evaluate(nobody), 0) << nobody;
    }
}

// The sanitizers watch here for reads beyond the tables.
TEST(Evaluate, OddPositionsAreEvaluated) {
    Evaluator evaluate;
    for (const char* fen : oddPositions) {
        const auto board = boardOf(fen);
        for (const Colour mover : {White, Black}) {
            board->sideToMove = mover;
            EXPECT_LT(std::abs(evaluate(*board)), MateThreshold) << fen;
            EXPECT_FALSE(evaluationText(*board, evaluate.pawnHash).empty());
        }
    }
    TestRandom random(4);
    const auto board = std::make_unique<Board_0x88>();
    for (int i = 0; i < 20000; ++i) {
        board->clearBoard();
        for (unsigned pieces = random.below(33); pieces > 0; --pieces) {
            const Square square = as88(static_cast<Square64>(random.below(64)));
            if (board->pieceOn[square] != NoPiece) continue;
            board->addPiece(square, static_cast<PieceType>(Pawn + random.below(6)),
                            random.below(2) ? Black : White);
        }
        board->sideToMove = random.below(2) ? Black : White;
        EXPECT_LT(std::abs(evaluate(*board)), MateThreshold) << board->toFEN();
    }
}

TEST(Evaluate, MissingKingHasNoTerms) {
    Evaluator evaluate;
    EvalBreakdown terms;
    evaluateWithBreakdown(*boardOf("8/2p1p3/8/3P4/8/8/3q4/R7 w - - 0 1"), evaluate.memory, terms);
    for (const EvalRow row : {EvalRow::KingSafety, EvalRow::KingTropism}) {
        EXPECT_EQ(terms.terms[static_cast<int>(row)][White], ScorePair());
        EXPECT_EQ(terms.terms[static_cast<int>(row)][Black], ScorePair());
    }
}

}  // namespace
}  // namespace vatro
