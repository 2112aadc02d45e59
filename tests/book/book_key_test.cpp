// tests/book/book_key_test.cpp - keys that the format publishes, and what they depend on.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "board/move_generation.h"
#include "book/polyglot_book.h"
#include "book_file.h"

namespace vatro {
namespace {

/// Plays moves in coordinate notation from the start position.
Board_0x88 playedFromStart(const std::string& moves) {
    Board_0x88 board = *boardOf(startPositionFEN);
    for (std::size_t at = 0; at < moves.size(); at += 5) {
        const Move move = findMove(board, moves.substr(at, 4));
        EXPECT_NE(move, NoMove) << moves << " at " << at;
        UndoRecord undo;
        makeMove(board, move, undo);
    }
    return board;
}

TEST(BookKey, MatchesThePublishedKeys) {
    // Each line: moves from the start, the key that the format's description gives.
    const std::pair<const char*, Key> cases[] = {
        {"", 0x463B96181691FC9C},
        {"e2e4", 0x823C9B50FD114196},
        {"e2e4 d7d5", 0x0756B94461C50FB0},
        {"e2e4 d7d5 e4e5", 0x662FAFB965DB29D4},
        {"e2e4 d7d5 e4e5 f7f5", 0x22A48B5A8E47FF78},
        {"e2e4 d7d5 e4e5 f7f5 e1e2", 0x652A607CA3F242C1},
        {"e2e4 d7d5 e4e5 f7f5 e1e2 e8f7", 0x00FDD303C946BDD9},
        {"a2a4 b7b5 h2h4 b5b4 c2c4", 0x3C8123EA7B067637},
        {"a2a4 b7b5 h2h4 b5b4 c2c4 b4c3 a1a3", 0x5C3F9B829B279560},
    };
    for (const auto& [moves, key] : cases) {
        SCOPED_TRACE(moves);
        const Board_0x88 board = playedFromStart(moves);
        EXPECT_EQ(bookKey(board), key);
        // The same from the position alone, without its history.
        EXPECT_EQ(bookKey(*boardOf(board.toFEN())), key);
    }
}

// The published positions keep their queens and most rights: these reach the rest of the table.
TEST(BookKey, TellsRightsPiecesAndColoursApart) {
    const char* positions[] = {
        "r3k2r/8/8/8/8/8/8/R3K2R w K - 0 1", "r3k2r/8/8/8/8/8/8/R3K2R w Q - 0 1",
        "r3k2r/8/8/8/8/8/8/R3K2R w k - 0 1", "r3k2r/8/8/8/8/8/8/R3K2R w q - 0 1",
        "r3k2r/8/8/8/8/8/8/R3K2R b q - 0 1", "4k3/8/8/3Q4/8/8/8/4K3 w - - 0 1",
        "4k3/8/8/3q4/8/8/8/4K3 w - - 0 1",   "4k3/8/8/3R4/8/8/8/4K3 w - - 0 1",
        "4k3/8/8/3B4/8/8/8/4K3 w - - 0 1",   "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1",
        "4k3/8/8/3pP3/8/8/8/4K3 w - - 0 1",  "4k3/8/8/3p4/8/8/8/4K3 w - d6 0 1",
    };
    for (const char* a : positions) {
        for (const char* b : positions) {
            SCOPED_TRACE(std::string(a) + " and " + b);
            EXPECT_EQ(bookKey(*boardOf(a)) == bookKey(*boardOf(b)), a == b);
        }
    }
    // A double step that nobody can capture leaves no trace in the key.
    EXPECT_EQ(bookKey(*boardOf("4k3/8/8/3p4/8/8/8/4K3 w - d6 0 1")),
              bookKey(*boardOf("4k3/8/8/3p4/8/8/8/4K3 w - - 0 1")));
}

}  // namespace
}  // namespace vatro
