// tests/board/move_generation_test.cpp - what perft totals cannot show: the order of moves, and
// what odd positions yield.
#include "board/move_generation.h"

#include <algorithm>

#include "board/move_ordering.h"
#include "support.h"

namespace vatro {
namespace {

using Texts = std::vector<std::string>;

TEST(MoveGeneration, KeepsTheOrderOfPiecesAndDirections) {
    struct Case {
        const char* fen;
        Texts moves;
    };
    const Case cases[] = {
        {startPositionFEN,
         {"b1a3", "b1c3", "g1f3", "g1h3", "a2a3", "a2a4", "b2b3", "b2b4", "c2c3", "c2c4",
          "d2d3", "d2d4", "e2e3", "e2e4", "f2f3", "f2f4", "g2g3", "g2g4", "h2h3", "h2h4"}},
        // A pawn with three ways to promote: captures first, queen, knight, rook, bishop on each.
        {"3r1r2/4P3/8/8/8/8/8/k1K5 w - - 0 1",
         {"c1c2", "e7d8q", "e7d8n", "e7d8r", "e7d8b", "e7f8q", "e7f8n", "e7f8r", "e7f8b", "e7e8q",
          "e7e8n", "e7e8r", "e7e8b"}},
        // En passant comes first, castling last.
        {"4k3/8/8/1PpP4/8/7P/7P/4K2R w K c6 0 1",
         {"d5c6", "b5c6", "e1d1", "e1e2", "e1f1", "e1d2", "e1f2", "h1g1", "h1f1", "b5b6", "d5d6",
          "h3h4", "e1g1"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(legalMoves(c.fen), c.moves) << c.fen;
    }
}

TEST(MoveGeneration, SlidersGoRayByRay) {
    EXPECT_EQ(legalMoves("8/8/8/k7/8/2p5/1Q1P4/K7 w - - 0 1"),
              (Texts{"a1a2", "a1b1", "b2a2", "b2b3", "b2b4", "b2b5", "b2b6", "b2b7", "b2b8", "b2c2",
                     "b2b1", "b2a3", "b2c3", "b2c1", "d2c3", "d2d3", "d2d4"}));
    EXPECT_EQ(legalMoves("4k3/8/8/8/8/8/8/K2b4 b - - 0 1"),
              (Texts{"e8d8", "e8f8", "e8e7", "e8f7", "e8d7", "d1c2", "d1b3", "d1a4", "d1e2", "d1f3",
                     "d1g4", "d1h5"}));
}

/// True when the side to move may play the move.
bool canPlay(const char* fen, std::string_view move) {
    return findMove(*boardOf(fen), move) != NoMove;
}

TEST(MoveGeneration, RespectsPinsChecksAndCastlingSquares) {
    struct Case {
        const char* why;
        const char* fen;
        const char* move;
        bool legal;
    };
    const Case cases[] = {
        {"pinned, along the pin", "4r2k/8/8/8/8/8/4R3/4K3 w - - 0 1", "e2e8", true},
        {"pinned, off the line", "4r2k/8/8/8/8/8/4R3/4K3 w - - 0 1", "e2d2", false},
        {"pinned pawn takes the pinner", "7k/8/8/8/8/6b1/5P2/4K3 w - - 0 1", "f2g3", true},
        {"pinned pawn advances", "7k/8/8/8/7b/8/5P2/4K3 w - - 0 1", "f2f3", false},
        {"two pieces on the line pin neither", "4r2k/8/8/8/4N3/8/4R3/4K3 w - - 0 1", "e2d2", true},
        {"capture of a lone checker", "4r2k/8/8/8/8/8/8/R3K3 w - - 0 1", "a1a2", false},
        {"a block", "4r2k/8/8/8/8/8/R7/4K3 w - - 0 1", "a2e2", true},
        {"a block in double check", "4r2k/8/8/8/8/3n4/R7/4K3 w - - 0 1", "a2e2", false},
        {"back along the checking line", "4r2k/8/8/8/8/8/4K3/8 w - - 0 1", "e2e1", false},
        {"takes a defended checker", "4k3/8/8/8/8/3b4/4q3/4K3 w - - 0 1", "e1e2", false},
        {"en passant opens the rank", "8/8/8/K2pP2r/8/8/8/7k w - d6 0 1", "e5d6", false},
        {"en passant takes the checker", "8/8/8/3pP3/2K5/8/8/7k w - d6 0 1", "e5d6", true},
        {"en passant opens the victim's line", "7k/6b1/8/3Pp3/8/2K5/8/8 w - e6 0 1", "d5e6", false},
        {"castles", "4k3/8/8/8/8/8/8/R3K2R w KQ - 0 1", "e1c1", true},
        {"b1 attacked", "1r2k3/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1c1", true},
        {"b1 occupied", "4k3/8/8/8/8/8/8/RN2K3 w Q - 0 1", "e1c1", false},
        {"d1 attacked", "3rk3/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1c1", false},
        {"c1 attacked", "2r1k3/8/8/8/8/8/8/R3K3 w Q - 0 1", "e1c1", false},
        {"f1 attacked by a pawn", "4k3/8/8/8/8/8/6p1/4K2R w K - 0 1", "e1g1", false},
        {"out of check", "4k3/4r3/8/8/8/8/8/4K2R w K - 0 1", "e1g1", false},
        {"no right", "4k3/8/8/8/8/8/8/4K2R w - - 0 1", "e1g1", false},
        {"the rook may be attacked", "4k2r/8/8/8/8/8/8/4K2R w K - 0 1", "e1g1", true},
        {"double step over a piece", "4k3/8/8/8/8/4n3/4P3/7K w - - 0 1", "e2e4", false},
        {"captures across the edge", "4k3/8/8/8/p7/8/7P/K7 w - - 0 1", "h2a4", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(canPlay(c.fen, c.move), c.legal) << c.fen << ' ' << c.move;
    }
}

TEST(MoveGeneration, ADoubleCheckLeavesOnlyTheKing) {
    EXPECT_EQ(legalMoves("4r2k/8/8/8/8/3n4/R6Q/4K3 w - - 0 1"), (Texts{"e1d1", "e1f1", "e1d2"}));
    EXPECT_TRUE(legalMoves("7k/5KQ1/8/8/8/8/8/8 b - - 0 1").empty());
    EXPECT_TRUE(legalMoves("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1").empty());
}

TEST(MoveGeneration, CountAndCapturesAgreeWithTheList) {
    TestRandom random(3);
    const auto check = [](const Board_0x88& board) {
        MoveList all;
        generateLegalMoves(board, all);
        ASSERT_EQ(countLegalMoves(board), all.count) << board.toFEN();
        const PinInfo pins = computePins(board);
        ASSERT_EQ(board.toMove() == White ? hasOnlyOneLegalMove<White>(board, pins)
                                          : hasOnlyOneLegalMove<Black>(board, pins),
                  all.count == 1)
            << board.toFEN();
        Texts expected;
        for (const ScoredMove& entry : all) {
            const bool captures = typeOf(entry.move()) == EnPassant ||
                                  board.pieceOn[toSquare(entry.move())] != NoPiece;
            const bool promotes = isPromotion(entry.move());
            if (promotes ? promotionPiece(entry.move()) == Queen : captures) {
                expected.push_back(moveToText(entry.move()));
            }
        }
        MoveList captures;
        const SquareMask everywhere = ~SquareMask{0};
        board.sideToMove == White ? generateCaptures<White>(board, pins, everywhere, captures)
                                  : generateCaptures<Black>(board, pins, everywhere, captures);
        Texts found;
        for (const ScoredMove& entry : captures) {
            found.push_back(moveToText(entry.move()));
        }
        ASSERT_EQ(found, expected) << board.toFEN();
    };
    for (const char* fen : richPositions) {
        for (int game = 0; game < 5; ++game) {
            forEachRandomPosition(fen, 120, random, check);
        }
    }
    for (const char* fen : oddPositions) {
        forEachRandomPosition(fen, 60, random, check);
    }
}

TEST(Move, TextAndSameness) {
    EXPECT_EQ(moveToText(0x2184), "e1g1");
    EXPECT_EQ(moveToText(0x6084), "e1c1");
    EXPECT_EQ(moveToText(0xAFBC), "e8g8");
    EXPECT_EQ(moveToText(0xEEBC), "e8c8");
    for (const auto& [piece, text] : {std::pair(Knight, "a7b8n"), std::pair(Bishop, "a7b8b"),
                                      std::pair(Rook, "a7b8r"), std::pair(Queen, "a7b8q")}) {
        EXPECT_EQ(moveToText(makePromotion(A7, B8, piece)), text);
        EXPECT_EQ(sameMove(makePromotion(A7, B8, piece), makePromotion(A7, B8, Queen)),
                  piece == Queen);
        EXPECT_FALSE(sameMove(makePromotion(A7, B8, piece), makeMoveWord(A7, B8)));
    }
    EXPECT_TRUE(sameMove(makeMoveWord(E2, E4), makeMoveWord(E2, E4, Normal, DoubleStep)));
    EXPECT_FALSE(sameMove(makeMoveWord(E2, E4), makeMoveWord(E2, E3)));
}

}  // namespace
}  // namespace vatro
