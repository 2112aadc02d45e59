// tests/board/zobrist_test.cpp - the keys must be those of the C library's generator, where that is
// the common one on Linux.
#include "board/zobrist.h"

#include <cstdlib>
#include <set>

#include "support.h"

namespace vatro {
namespace {

#if defined(__GLIBC__)
Key sixCalls() {
    Key key = 0;
    for (const int shift : {0, 11, 22, 33, 44}) {
        key |= static_cast<Key>(std::rand() & 0x7FF) << shift;
    }
    return key | static_cast<Key>(std::rand() & 0x1FF) << 55;
}

TEST(Zobrist, KeysComeFromTheLibrarysGenerator) {
    std::srand(327641845);
    for (const Colour colour : {White, Black}) {
        for (int type = Pawn; type <= King; ++type) {
            for (const Square64 square : allSquares) {
                ASSERT_EQ(zobrist.pieceSquare(colour, static_cast<PieceType>(type), square),
                          sixCalls());
            }
        }
    }
    for (const int right : {1, 2, 4, 8}) {
        EXPECT_EQ(zobrist.castling[right], sixCalls());
    }
    for (const Key key : zobrist.epFile) {
        EXPECT_EQ(key, sixCalls());
    }
    EXPECT_EQ(zobrist.side, sixCalls());
}
#endif

TEST(Zobrist, PlayAndSetupGiveTheSameKeys) {
    TestRandom random(11);
    for (const char* fen : richPositions) {
        forEachRandomPosition(fen, 80, random, [](const Board_0x88& board) {
            const auto fresh = boardOf(board.toFEN());
            ASSERT_EQ(fresh->record().key, board.record().key) << board.toFEN();
            ASSERT_EQ(fresh->record().pawnKey, board.record().pawnKey);
        });
    }
}

TEST(Zobrist, EveryPartOfThePositionIsInTheKey) {
    std::set<Key> keys;
    const char* variants[] = {
        "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq - 0 1",  "r3k2r/8/8/3pP3/8/8/8/R3K2R b KQkq - 0 1",
        "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6 0 1", "r3k2r/8/8/3pP3/8/8/8/R3K2R w Qkq - 0 1",
        "r3k2r/8/8/3pP3/8/8/8/R3K2R w Kkq - 0 1",   "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQq - 0 1",
        "r3k2r/8/8/3pP3/8/8/8/R3K2R w KQk - 0 1",   "r3k2r/8/8/3pP3/8/8/8/R3K2R w - - 0 1",
        "r3k2r/8/8/3pp3/8/8/8/R3K2R w KQkq - 0 1",  "r3k2r/8/8/4pP2/8/8/8/R3K2R w KQkq e6 0 1",
    };
    for (const char* fen : variants) {
        EXPECT_TRUE(keys.insert(boardOf(fen)->record().key).second) << fen;
    }
}

}  // namespace
}  // namespace vatro
