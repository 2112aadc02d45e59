// tests/tools/random_positions_test.cpp - random positions must look like chess, and their text
// must read back to the same board.
#include "tools/random_positions.h"

#include <cstdio>
#include <fstream>
#include <set>

#include "board/attacks.h"
#include "support.h"

namespace vatro {
namespace {

constexpr SquareMask outerRanks = 0xFF000000000000FFULL;
constexpr SquareMask darkSquares = 0xAA55AA55AA55AA55ULL;

/// Pieces that a side can only have from promotions.
int promotedPieces(const Board_0x88& board, Colour colour) {
    const auto beyond = [](int count, int whole) { return std::max(count - whole, 0); };
    const SquareMask bishops = board.pieceMask[colour][Bishop];
    return beyond(board.count(colour, Queen), 1) + beyond(board.count(colour, Rook), 2) +
           beyond(board.count(colour, Knight), 2) + beyond(countSquares(bishops & darkSquares), 1) +
           beyond(countSquares(bishops & ~darkSquares), 1);
}

void expectLegal(Board_0x88& board) {
    ASSERT_TRUE(isConsistent(board));
    for (const Colour colour : {White, Black}) {
        ASSERT_EQ(board.count(colour, King), 1);
        ASSERT_EQ(board.pieceMask[colour][Pawn] & outerRanks, 0U);
        ASSERT_LE(board.totalCount(colour), 16);
        ASSERT_LE(board.count(colour, Pawn) + promotedPieces(board, colour), 8);
    }
    const Square whiteKing = board.kingSquare(White);
    const Square blackKing = board.kingSquare(Black);
    ASSERT_GT(kingDistance(as64(whiteKing), as64(blackKing)), 1);
    ASSERT_FALSE(isAttacked(board, board.kingSquare(~board.toMove()), board.toMove()));
    ASSERT_LE(countSquares(computePins(board).checkers), 1);
    if (board.epSquare == NoSquare) return;
    // The pawn can go back to where it came from, and nobody was in check there out of turn.
    const int back = board.sideToMove == White ? 16 : -16;
    ASSERT_EQ(board.pieceOn[board.epSquare], NoPiece);
    ASSERT_EQ(board.pieceOn[board.epSquare + back], NoPiece);
    ASSERT_EQ(board.pieceOn[board.epSquare - back], Pawn);
    ASSERT_EQ(board.halfmoveClock, 0);
    std::string before = board.toFEN();
    Board_0x88 earlier;
    for (const Square64 square64 : allSquares) {
        const Square square = as88(square64);
        if (board.pieceOn[square] == NoPiece) continue;
        const Square from = square == board.epSquare - back ? board.epSquare + back : square;
        earlier.addPiece(from, board.pieceAt(square), board.colourAt(square));
    }
    ASSERT_FALSE(isAttacked(earlier, earlier.kingSquare(board.toMove()), ~board.toMove()));
}

TEST(RandomPositions, AreLegalVariedAndReadBackTheSame) {
    Random random(30);
    const auto board = std::make_unique<Board_0x88>();
    const auto copy = std::make_unique<Board_0x88>();
    std::set<std::string> texts;
    int whiteToMove = 0, withRights = 0, withEnPassant = 0, checks = 0, promoted = 0;
    int byTotal[33] = {};
    constexpr int Count = 100000;
    for (int i = 0; i < Count; ++i) {
        setupRandomPosition(*board, random);
        expectLegal(*board);
        const std::string text = board->toFEN(30);
        ASSERT_TRUE(copy->setupFromFEN(text.c_str())) << text;
        ASSERT_EQ(copy->toFEN(30), text);
        ASSERT_EQ(copy->record().key, board->record().key) << text;
        ASSERT_EQ(copy->record().pawnKey, board->record().pawnKey) << text;
        if (HasFatalFailure()) return;
        texts.insert(text);
        whiteToMove += board->sideToMove == White;
        withRights += board->castlingRights != 0;
        withEnPassant += board->epSquare != NoSquare;
        checks += inCheck(*board);
        promoted += promotedPieces(*board, White) > 0;
        ++byTotal[board->totalCount()];
    }
    EXPECT_GT(texts.size(), Count * 99 / 100);
    EXPECT_GT(whiteToMove, Count * 2 / 5);
    EXPECT_LT(whiteToMove, Count * 3 / 5);
    for (const int some : {withRights, withEnPassant, checks, promoted}) {
        EXPECT_GT(some, Count / 200);
    }
    for (int total = 4; total <= 28; ++total) {
        EXPECT_GT(byTotal[total], Count / 1000) << total;
    }
}

TEST(RandomPositions, AreWrittenOneALine) {
    Random random(31);
    const std::string path = testing::TempDir() + "vatro_random.fen";
    testing::internal::CaptureStdout();
    StopCheck never;
    ASSERT_TRUE(writeRandomPositions(10, path.c_str(), random, never));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Wrote 10 random FENs to file \"" + path + "\"\n");
    std::ifstream file(path);
    int lines = 0;
    for (std::string line; std::getline(file, line); ++lines) {
        boardOf(line);
        EXPECT_EQ(std::count(line.begin(), line.end(), ' '), 5) << line;
    }
    EXPECT_EQ(lines, 10);
    std::remove(path.c_str());

    testing::internal::CaptureStdout();
    ASSERT_TRUE(writeRandomPositions(3, nullptr, random, never));
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 3);

    testing::internal::CaptureStdout();
    EXPECT_FALSE(writeRandomPositions(3, testing::TempDir().c_str(), random, never));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "# ERROR: failed to open file \"" + testing::TempDir() + "\" for writing");

    int questions = 0;
    StopCheck stop([&questions] { return ++questions == 4; });
    testing::internal::CaptureStdout();
    ASSERT_TRUE(writeRandomPositions(1000000, nullptr, random, stop));
    const std::string cut = testing::internal::GetCapturedStdout();
    EXPECT_EQ(std::count(cut.begin(), cut.end(), '\n'), 5);
    EXPECT_TRUE(cut.ends_with("\n# interrupted\n")) << cut;
}

}  // namespace
}  // namespace vatro
