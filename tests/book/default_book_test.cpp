// tests/book/default_book_test.cpp - the book that is made from data/openings.pgn, whole.
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "board/make_move.h"
#include "book/book_move.h"
#include "book/polyglot_book.h"
#include "book_file.h"

namespace vatro {
namespace {

std::uint64_t readNumber(const std::string& bytes, std::size_t at, int size) {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

/// Plays all moves of the book from the board's position on.
class BookWalk {
  public:
    explicit BookWalk(const std::string& bytes) {
        for (std::size_t at = 0; at + 16 <= bytes.size(); at += 16) {
            moves[readNumber(bytes, at, 8)].push_back(
                static_cast<std::uint16_t>(readNumber(bytes, at + 8, 2)));
        }
    }

    void visit(Board_0x88& board) {
        const auto entry = moves.find(bookKey(board));
        if (entry == moves.end() || !visited.insert(entry->first).second) return;
        for (const std::uint16_t word : entry->second) {
            const Move move = fromBookMove(board, word);
            EXPECT_NE(move, NoMove) << board.toFEN() << " " << word;
            if (move == NoMove) continue;
            UndoRecord undo;
            board.record().movePlayed = move;
            makeMove(board, move, undo);
            visit(board);
            unmakeMove(board, move, undo);
        }
    }

    std::map<Key, std::vector<std::uint16_t>> moves;
    std::set<Key> visited;
};

TEST(DefaultBook, HoldsLegalMovesOfPositionsThatItReaches) {
    std::ifstream file(VATRO_DEFAULT_BOOK, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    ASSERT_GT(bytes.size(), 0U);
    BookWalk walk(bytes);
    Board_0x88 board = *boardOf(startPositionFEN);
    walk.visit(board);
    EXPECT_EQ(walk.visited.size(), walk.moves.size());
    EXPECT_GE(walk.moves[bookKey(board)].size(), 4U) << "first moves to choose from";
}

}  // namespace
}  // namespace vatro
