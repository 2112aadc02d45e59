// tests/eval/pawn_terms_test.cpp - pawn terms against slow definitions, and examples.
#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

#include "eval/passed_pawns.h"
#include "eval/pawn_structure.h"
#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

/// The pawn terms of one colour, square by square. Ranks count from the colour's own side.
struct SlowPawns {
    const Board_0x88& board;
    Colour us;

    bool holds(int file, int rank, Colour colour, bool onlyPawns = true) const {
        if (file < 0 || file > 7 || rank < 0 || rank > 7) return false;
        const int square = (us == White ? rank : 7 - rank) * 16 + file;
        return board.colourOn[square] == colour && (!onlyPawns || board.pieceOn[square] == Pawn);
    }
    int countOnFile(int file, Colour colour, int fromRank = 0) const {
        int count = 0;
        for (int rank = fromRank; rank < 8; ++rank)
            count += holds(file, rank, colour);
        return count;
    }
    bool isIsolated(int file) const {
        return countOnFile(file - 1, us) == 0 && countOnFile(file + 1, us) == 0;
    }
    bool isSupported(int file, int rank) const {
        for (int r = 0; r <= rank; ++r) {
            if (holds(file - 1, r, us) || holds(file + 1, r, us)) return true;
        }
        return false;
    }
    Pair backward(int file, int rank) const {
        if (rank < 1 || rank > 4 || isIsolated(file) || isSupported(file, rank)) return {0, 0};
        bool attacked = false;
        bool blocked = false;
        for (int r = rank + 1;; ++r) {
            blocked |= holds(file, r, ~us);
            attacked |= holds(file - 1, r + 1, ~us) || holds(file + 1, r + 1, ~us);
            if (holds(file - 1, r, us) || holds(file + 1, r, us)) break;
        }
        return {attacked * -24 + blocked * 12, attacked * -13 + blocked * -5};
    }
    Pair weak() const {
        Pair sum;
        const auto add = [&](Pair term) {
            sum.first += term.first;
            sum.second += term.second;
        };
        for (int file = 0; file < 8; ++file) {
            const int count = countOnFile(file, us);
            if (count > 0 && isIsolated(file)) add({-31, -13});
            if (count > 1) add({-6, -30});
            for (int rank = 0; rank < 8; ++rank) {
                if (holds(file, rank, us)) add(backward(file, rank));
            }
        }
        return sum;
    }

    bool isPassed(int file, int rank) const {
        return countOnFile(file - 1, ~us, rank + 1) + countOnFile(file, ~us, rank + 1) +
                   countOnFile(file + 1, ~us, rank + 1) ==
               0;
    }
    ScoreSum passed(int file, int rank) const {
        int steps = rank == 1 ? 5 : 7 - rank;
        bool blocked = false;
        for (int r = rank + 1; r < 8; ++r) {
            blocked |= holds(file, r, ~us, false);
            steps += holds(file, r, ~us, false) || holds(file, r, us, false);
        }
        steps = std::min(steps, PassedStepCount - 1);
        if (blocked) return blockedPawnBonus[steps];
        ScoreSum sum = passedPawnBonus[steps];
        const Square king = board.kingSquare(~us);
        if (king == NoSquare || board.totalCount(~us) != board.count(~us, Pawn) + 1) return sum;
        const int ranks = us == White ? 7 - rankOf(king) : rankOf(king);
        const int distance = std::max(std::abs(fileOf(king) - file), ranks);
        if (steps < (board.toMove() == us ? distance : distance - 1))
            sum += unstoppablePawnBonus[steps];
        return sum;
    }
    ScoreSum allPassed() const {
        ScoreSum sum;
        for (int file = 0; file < 8; ++file) {
            for (int rank = 0; rank < 8; ++rank) {
                if (holds(file, rank, us) && isPassed(file, rank)) sum += passed(file, rank);
            }
        }
        return sum;
    }
};

/// Pawns anywhere, also on the first and last ranks, with kings and sometimes other pieces.
void placeAtRandom(Board_0x88& board, TestRandom& random) {
    board.clearBoard();
    const auto place = [&](PieceType type, Colour colour) {
        const Square square = as88(static_cast<Square64>(random.below(64)));
        if (board.pieceOn[square] == NoPiece) board.addPiece(square, type, colour);
    };
    place(King, White);
    place(King, Black);
    for (unsigned pawns = random.below(17); pawns > 0; --pawns)
        place(Pawn, random.below(2) ? Black : White);
    for (unsigned pieces = random.below(4); pieces > 0; --pieces)
        place(Rook, random.below(2) ? Black : White);
    board.sideToMove = random.below(2) ? Black : White;
}

TEST(PawnTerms, AgreeWithTheSlowDefinitions) {
    TestRandom random(6);
    const auto board = std::make_unique<Board_0x88>();
    for (int i = 0; i < 30000; ++i) {
        placeAtRandom(*board, random);
        const SlowPawns white{*board, White};
        const SlowPawns black{*board, Black};
        SCOPED_TRACE(board->toFEN());
        ScoreSum weak[ColourCount];
        const PawnStructure structure = computePawnStructure(*board, weak);
        ASSERT_EQ(pairOf(weak[White]), white.weak());
        ASSERT_EQ(pairOf(weak[Black]), black.weak());
        ASSERT_EQ(structure.score, (weak[White] - weak[Black]).pair());
        for (int file = 0; file < 8; ++file) {
            const int colours =
                (white.countOnFile(file, White) > 0) + (white.countOnFile(file, Black) > 0);
            ASSERT_EQ((structure.openFiles >> file) & 1, colours == 0);
            ASSERT_EQ((structure.halfOpenFiles >> file) & 1, colours == 1);
        }
        ASSERT_EQ(pairOf(passedPawnTerms<White>(*board, structure.passed[White])),
                  pairOf(white.allPassed()));
        ASSERT_EQ(pairOf(passedPawnTerms<Black>(*board, structure.passed[Black])),
                  pairOf(black.allPassed()));
    }
}

TEST(PawnTerms, WeakPawns) {
    const std::pair<const char*, Pair> cases[] = {
        {"4k2r/8/8/8/8/8/P7/4K3 w - - 0 1", {-31, -13}},
        {"4k3/8/2P5/8/2P5/8/2P5/4K3 w - - 0 1", {-37, -43}},  // once for the whole file
        {"4k3/8/8/4p3/2P1P3/3P4/8/4K3 w - - 0 1", {-24, -13}},
        {"4k3/8/8/8/2PpP3/3P4/8/4K3 w - - 0 1", {12, -5}},
        {"4k3/8/8/2p5/2PpP3/3P4/8/4K3 w - - 0 1", {-12, -18}},
        {"4k3/8/8/4p3/2P1P3/3P4/4P3/4K3 w - - 0 1", {-6, -30}},  // supported: only doubled
    };
    for (const auto& [fen, expected] : cases) {
        ScoreSum weak[ColourCount];
        (void)computePawnStructure(*boardOf(fen), weak);
        EXPECT_EQ(pairOf(weak[White]), expected) << fen;
    }
}

TEST(PawnTerms, PassedPawns) {
    const std::pair<const char*, Pair> cases[] = {
        {"4k2r/8/8/8/8/8/P7/4K3 w - - 0 1", {8, 36}},             // the double step
        {"4n2k/8/4P3/8/8/8/8/K7 w - - 0 1", {5, 21}},             // blocked
        {"k7/7p/8/4P3/8/8/8/4K3 w - - 0 1", {20 + 95, 84 + 90}},  // unstoppable
        {"k7/7p/8/4P3/8/8/8/4K3 b - - 0 1", {20, 84}},
        {"8/2k4p/8/4P3/8/8/8/4K3 w - - 0 1", {20, 84}},
        {"k6r/8/8/4P3/8/8/8/4K3 w - - 0 1", {20, 84}},
        {"PR2k3/8/8/8/8/8/8/4K3 w - - 0 1", {0, 0}},        // on its last rank
        {"n3k3/r7/q7/b7/r7/b7/n7/P3K3 w - - 0 1", {0, 0}},  // 14 steps count as 11
    };
    for (const auto& [fen, expected] : cases) {
        const auto board = boardOf(fen);
        ScoreSum weak[ColourCount];
        const PawnStructure structure = computePawnStructure(*board, weak);
        EXPECT_EQ(pairOf(passedPawnTerms<White>(*board, structure.passed[White])), expected) << fen;
    }
}

}  // namespace
}  // namespace vatro
