// tests/board/fen_test.cpp - the reader is strict about form and lenient about chess; what it
// accepts must be a sound board.
#include <cstdlib>
#include <utility>

#include "support.h"

namespace vatro {
namespace {

TEST(FenReader, SetsUpTheStartPosition) {
    const auto board = boardOf(startPositionFEN);
    EXPECT_EQ(board->sideToMove, White);
    EXPECT_EQ(board->castlingRights, 15);
    EXPECT_EQ(board->epSquare, NoSquare);
    EXPECT_EQ(board->halfmoveClock, 0);
    const Square inSlots[SlotCount] = {E1, D1, A1, H1, C1, F1, B1, G1,
                                       A2, B2, C2, D2, E2, F2, G2, H2};
    for (int slot = 0; slot < SlotCount; ++slot) {
        EXPECT_EQ(board->pieceLists[White].squares[slot], inSlots[slot]) << slot;
    }
    EXPECT_EQ(board->totalCount(White), 16);
    EXPECT_EQ(board->totalCount(Black), 16);
    EXPECT_TRUE(isConsistent(*board));
    EXPECT_EQ(board->perftKeys[0], board->record().key);
}

TEST(FenReader, AcceptsWhatIsWellFormed) {
    const std::pair<const char*, const char*> cases[] = {
        {"no pieces, no clocks", "8/8/8/8/8/8/8/8 w - -"},
        {"ends after an en-passant square", "4k3/8/8/3pP3/8/8/8/4K3 w - d6"},
        {"a move number alone", "4k3/8/8/8/8/8/8/4K3 w - - 1"},
        {"some rights", "r3k2r/8/8/8/8/8/8/R3K2R w Kq - 0 1"},
        {"an empty castling field", "4k3/8/8/8/8/8/8/4K3 w  - 0 1"},
        {"half-move clock of four digits", "4k3/8/8/8/8/8/8/4K3 w - - 0099 1"},
        {"text behind the last number", "4k3/8/8/8/8/8/8/4K3 w - - 0 1 bm e4"},
        {"digits that add up", "4k3/11111111/8/8/8/8/44/4K3 w - - 0 1"},
        {"ten knights", "4k3/8/8/8/8/8/NNNNNNNN/NN2K3 w - - 0 1"},
    };
    for (const auto& [why, fen] : cases) {
        SCOPED_TRACE(why);
        Board_0x88 board;
        EXPECT_TRUE(board.setupFromFEN(fen));
        EXPECT_TRUE(isConsistent(board));
    }
}

TEST(FenReader, RefusesMalformedFields) {
    const std::pair<const char*, const char*> cases[] = {
        {"nothing", ""},
        {"a leading blank", " 8/8/8/8/8/8/8/8 w - - 0 1"},
        {"ends in the placement", "4k3/8/8/8/8/8/8/4K3"},
        {"nine squares by letters", "rnbqkbnr/ppppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1"},
        {"nine squares by a digit", "4k4/8/8/8/8/8/8/4K3 w - - 0 1"},
        {"seven squares", "4k2/8/8/8/8/8/8/4K3 w - - 0 1"},
        {"seven squares at the end", "4k3/8/8/8/8/8/8/4K2 w - - 0 1"},
        {"seven ranks", "4k3/8/8/8/8/8/4K3 w - - 0 1"},
        {"nine ranks", "4k3/8/8/8/8/8/8/8/4K3 w - - 0 1"},
        {"a digit 9", "4k3/9/8/8/8/8/8/4K3 w - - 0 1"},
        {"a digit 0", "4k3/08/8/8/8/8/8/4K3 w - - 0 1"},
        {"an unknown piece", "4k3/8/8/3x4/8/8/8/4K3 w - - 0 1"},
        {"a dot for an empty square", "4k3/8/8/3.4/8/8/8/4K3 w - - 0 1"},
        {"no side to move", "4k3/8/8/8/8/8/8/4K3 - - 0 1"},
        {"a capital side to move", "4k3/8/8/8/8/8/8/4K3 W - - 0 1"},
        {"ends after the side", "4k3/8/8/8/8/8/8/4K3 w"},
        {"castling letters out of order", "r3k2r/8/8/8/8/8/8/R3K2R w QK - 0 1"},
        {"a castling letter twice", "r3k2r/8/8/8/8/8/8/R3K2R w KK - 0 1"},
        {"a dash after a letter", "r3k2r/8/8/8/8/8/8/R3K2R w K- - 0 1"},
        {"a letter after the dash", "r3k2r/8/8/8/8/8/8/R3K2R w -K - 0 1"},
        {"ends after the rights", "r3k2r/8/8/8/8/8/8/R3K2R w KQkq"},
        {"no en-passant field", "4k3/8/8/8/8/8/8/4K3 w - "},
        {"an en-passant file alone", "4k3/8/8/3pP3/8/8/8/4K3 w - d"},
        {"an en-passant file that is none", "4k3/8/8/3pP3/8/8/8/4K3 w - i6"},
        {"the mover's own rank", "4k3/8/8/8/3pP3/8/8/4K3 w - e3 0 1"},
        {"the other side's rank", "4k3/8/8/3pP3/8/8/8/4K3 b - d6 0 1"},
        {"no pawn to capture", "4k3/8/8/8/3p4/8/8/4K3 b - e3 0 1"},
        {"a piece that is no pawn", "4k3/8/8/8/3pN3/8/8/4K3 b - e3 0 1"},
        {"an own pawn", "4k3/8/8/8/3pp3/8/8/4K3 b - e3 0 1"},
        {"text behind the square", "4k3/8/8/3pP3/8/8/8/4K3 w - d6x 0 1"},
        {"a blank and nothing", "4k3/8/8/8/8/8/8/4K3 w - - "},
        {"move number 0 alone", "4k3/8/8/8/8/8/8/4K3 w - - 0"},
        {"a clock of five digits", "4k3/8/8/8/8/8/8/4K3 w - - 00001 1"},
        {"a negative clock", "4k3/8/8/8/8/8/8/4K3 w - - -1 1"},
        {"move number 0", "4k3/8/8/8/8/8/8/4K3 w - - 0 0"},
        {"no move number", "4k3/8/8/8/8/8/8/4K3 w - - 0 "},
        {"no numbers", "4k3/8/8/8/8/8/8/4K3 w - -  "},
        {"move number far below 1", "4k3/8/8/8/8/8/8/4K3 w - - 0 -99999999999999999999"},
        {"two white kings", "4k3/8/8/8/8/8/8/3KK3 w - - 0 1"},
        {"nine pawns", "4k3/8/8/8/8/P7/PPPPPPPP/4K3 w - - 0 1"},
        {"eleven knights", "4k3/8/8/8/8/8/NNNNNNNN/NNN1K3 w - - 0 1"},
        {"more pieces than slots", "4k3/8/8/8/8/PPPPPPPP/8/RRR1K3 w - - 0 1"},
    };
    Board_0x88 board;
    for (const auto& [why, fen] : cases) {
        SCOPED_TRACE(why);
        EXPECT_FALSE(board.setupFromFEN(fen));
    }
    EXPECT_TRUE(board.setupFromFEN(startPositionFEN)) << "a refusal must not spoil the board";
    EXPECT_TRUE(isConsistent(board));
}

TEST(FenReader, SetsTheEnPassantSquareOnlyWhereAPawnCanCapture) {
    const std::pair<const char*, Square> cases[] = {
        {"4k3/8/8/8/4P3/8/8/4K3 b - e3 0 1", NoSquare},
        {"4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", E3},
        {"4k3/8/8/8/4Pp2/8/8/4K3 b - e3 0 1", E3},
        {"4k3/8/8/8/P6p/8/8/4K3 b - a3 0 1", NoSquare},  // beside it across the edge of the board
        {"4k3/8/8/3PpP2/8/8/8/4K3 w - e6 0 1", E6},
        {"4k3/8/8/3nPn2/8/8/8/4K3 b - - 0 1", NoSquare},
    };
    for (const auto& [fen, square] : cases) {
        const auto board = boardOf(fen);
        EXPECT_EQ(board->epSquare, square) << fen;
        EXPECT_TRUE(isConsistent(*board)) << fen;
    }
}

TEST(FenReader, DropsRightsWithoutKingAndRookAtHome) {
    const std::pair<const char*, int> cases[] = {
        {"r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1", 15},
        {"r3k2r/8/8/8/8/8/8/R2K3R w KQkq - 0 1", BlackKingSide | BlackQueenSide},
        {"r3k3/8/8/8/8/8/8/4K2R w KQkq - 0 1", WhiteKingSide | BlackQueenSide},
        {"R3k2r/8/8/8/8/8/8/r3K2N w KQkq - 0 1", BlackKingSide},
        {"8/8/8/8/8/8/8/8 w KQkq - 0 1", 0},
    };
    for (const auto& [fen, rights] : cases) {
        const auto board = boardOf(fen);
        EXPECT_EQ(board->castlingRights, rights) << fen;
        EXPECT_EQ(board->record().key, board->fullKey()) << fen;
    }
}

TEST(FenReader, KeepsTheClockToItsRange) {
    const std::pair<const char*, int> cases[] = {
        {"99 80", 99},    {"255 300", 255},
        {"256 300", 255}, {"9999 1", 255},
        {"7", 0},     // a lone move number
        {" 7 9", 0},  // an empty field, then the move number
        {"x 1", 0},       {"3 99999999999999999999", 3},
    };
    for (const auto& [numbers, clock] : cases) {
        EXPECT_EQ(boardOf("4k3/8/8/8/8/8/8/4K3 w - - " + std::string(numbers))->halfmoveClock,
                  clock)
            << numbers;
    }
}

TEST(FenWriter, WritesWhatWasRead) {
    for (const char* fen : richPositions) {
        EXPECT_EQ(boardOf(fen)->toFEN(static_cast<unsigned>(std::atoi(std::strrchr(fen, ' ')))),
                  fen);
    }
    EXPECT_EQ(boardOf("8/8/8/8/8/8/8/8 w - -")->toFEN(), "8/8/8/8/8/8/8/8 w - - 0 1");
    EXPECT_EQ(boardOf("4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 12")->toFEN(12),
              "4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 12");
}

TEST(FenWriter, ReadingItBackGivesTheSameBoard) {
    TestRandom random(5);
    const auto copy = std::make_unique<Board_0x88>();
    for (int game = 0; game < 60; ++game) {
        const char* fen = richPositions[random.below(std::size(richPositions))];
        forEachRandomPosition(fen, 100, random, [&](const Board_0x88& board) {
            const std::string text = board.toFEN(17);
            ASSERT_TRUE(copy->setupFromFEN(text.c_str())) << text;
            ASSERT_EQ(copy->toFEN(17), text);
            ASSERT_EQ(boardText(*copy), boardText(board));
            ASSERT_EQ(copy->epSquare, board.epSquare) << text;
            ASSERT_EQ(copy->castlingRights, board.castlingRights) << text;
            ASSERT_EQ(copy->halfmoveClock, board.halfmoveClock) << text;
        });
    }
    for (const char* fen : oddPositions) {
        const std::string text = boardOf(fen)->toFEN();
        EXPECT_EQ(boardOf(text)->toFEN(), text);
    }
}

}  // namespace
}  // namespace vatro
