// tests/book/polyglot_book_test.cpp - searching books made by hand, sound and unsound ones.
#include "book/polyglot_book.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <gtest/gtest.h>

#include "book_file.h"

namespace vatro {
namespace {

using test::bookBytes;
using test::bookMove;
using test::TemporaryFile;
using test::TestEntry;

Random draws(1);

/// What the book plays, in coordinate notation; empty when it has no move.
std::string answer(PolyglotBook& book, const Board_0x88& board, std::string* error = nullptr) {
    Move move = NoMove;
    std::string text;
    const bool found = book.probe(board, draws, move, error ? *error : text);
    EXPECT_EQ(text, "");
    return found ? moveToText(move) : "";
}

const Board_0x88 startPosition = *boardOf(startPositionFEN);
constexpr Key StartKey = 0x463B96181691FC9C;

TEST(PolyglotBook, FindsEveryPositionWhereverItStands) {
    // Kings on all squares of two files give positions whose keys lie anywhere in the file.
    std::vector<Board_0x88> boards;
    std::vector<TestEntry> entries;
    for (char file = 'a'; file <= 'h'; ++file) {
        Board_0x88 board = *boardOf("4k3/8/8/8/8/8/8/8 w - - 0 1");
        ASSERT_TRUE(board.addPiece(squareAt(file - 'a', 2), King, White));
        boards.push_back(board);
        entries.push_back({bookKey(board), bookMove(std::string{file, '3', file, '4'})});
    }
    std::sort(entries.begin(), entries.end(), [](auto& a, auto& b) { return a.key < b.key; });
    // Every number of entries from none to all: each of those there is found, no other one.
    for (std::size_t count = 0; count <= entries.size(); ++count) {
        const TemporaryFile file(bookBytes(std::vector(entries.begin(), entries.begin() + count)));
        PolyglotBook book(file.path);
        for (const Board_0x88& board : boards) {
            const auto at = std::find_if(entries.begin(), entries.end(), [&](const TestEntry& e) {
                return e.key == bookKey(board);
            });
            const bool present = at - entries.begin() < static_cast<std::ptrdiff_t>(count);
            EXPECT_EQ(!answer(book, board).empty(), present) << count << " entries";
        }
        EXPECT_EQ(answer(book, startPosition), "");
    }
}

TEST(PolyglotBook, DrawsInProportionToTheWeights) {
    const TemporaryFile file(bookBytes({{StartKey, bookMove("e2e4"), 1},
                                        {StartKey, bookMove("d2d4"), 0},
                                        {StartKey, bookMove("g1f3"), 3}}));
    PolyglotBook book(file.path);
    std::map<std::string, int> drawn;
    for (int i = 0; i < 4000; ++i)
        ++drawn[answer(book, startPosition)];
    EXPECT_EQ(drawn.size(), 2U);
    // 1000 expected; five standard deviations of a fair draw are 137.
    EXPECT_NEAR(drawn["e2e4"], 1000, 137);
    EXPECT_EQ(drawn["e2e4"] + drawn["g1f3"], 4000);
}

TEST(PolyglotBook, WithoutWeightsPlaysTheEntryFoundFirst) {
    const TestEntry entries[] = {{StartKey, bookMove("a2a3"), 0},
                                 {StartKey, bookMove("b2b3"), 0},
                                 {StartKey, bookMove("c2c3"), 0},
                                 {StartKey, bookMove("d2d3"), 0}};
    // By number of entries; the search by halves looks first at the upper middle.
    const char* first[] = {"", "a2a3", "b2b3", "b2b3", "c2c3"};
    for (int count = 1; count <= 4; ++count) {
        const TemporaryFile file(bookBytes(std::vector(entries, entries + count)));
        PolyglotBook book(file.path);
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(answer(book, startPosition), first[count]);
    }
}

TEST(PolyglotBook, Takes256EntriesOfAPositionAndNoMore) {
    // Of 300 entries the search meets number 150 first, goes back to 0 and then on to 255.
    for (const int weighty : {0, 149, 255, 256, 299}) {
        std::vector<TestEntry> entries(300, {StartKey, bookMove("a2a3"), 0});
        entries[150].move = bookMove("h2h3");
        entries[weighty] = {StartKey, bookMove("e2e4"), 65535};
        const TemporaryFile file(bookBytes(entries));
        PolyglotBook book(file.path);
        EXPECT_EQ(answer(book, startPosition), weighty <= 255 ? "e2e4" : "h2h3") << weighty;
    }
    // The largest sum of weights is drawn from evenly.
    std::vector<TestEntry> entries(256, {StartKey, bookMove("a2a3"), 65535});
    std::fill(entries.begin(), entries.begin() + 128, TestEntry{StartKey, bookMove("b2b3"), 65535});
    const TemporaryFile file(bookBytes(entries));
    PolyglotBook book(file.path);
    int firstHalf = 0;
    for (int i = 0; i < 400; ++i)
        firstHalf += answer(book, startPosition) == "b2b3" ? 1 : 0;
    EXPECT_NEAR(firstHalf, 200, 50);
}

TEST(PolyglotBook, AnIllegalMoveIsAsGoodAsNone) {
    for (const char* move : {"e2e5", "e1g1", "e1h1", "e7e5", "a1a1", "d1d8", "e2e4q", "e4e5"}) {
        const TemporaryFile file(bookBytes({{StartKey, bookMove(move), 1}}));
        PolyglotBook book(file.path);
        EXPECT_EQ(answer(book, startPosition), "") << move;
    }
}

TEST(PolyglotBook, UnsoundFilesHaveNoMoves) {
    const std::string entry = bookBytes({{StartKey, bookMove("e2e4"), 1}});
    PolyglotBook missing("no/such/folder/book.bin");
    EXPECT_EQ(answer(missing, startPosition), "");
    PolyglotBook folder(std::filesystem::temp_directory_path().string());
    EXPECT_EQ(answer(folder, startPosition), "");
    PolyglotBook unnamed("");
    EXPECT_EQ(answer(unnamed, startPosition), "");
    for (std::size_t size = 0; size < entry.size(); ++size) {
        const TemporaryFile file(entry.substr(0, size));
        PolyglotBook book(file.path);
        EXPECT_EQ(answer(book, startPosition), "") << size << " bytes";
    }
    // Whole entries count although the last one is cut off.
    const TemporaryFile cut(entry + entry.substr(0, 15));
    PolyglotBook book(cut.path);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
}

TEST(PolyglotBook, AnUnsortedBookGivesLegalMovesOrNone) {
    std::mt19937_64 random(7);
    int found = 0;
    for (int round = 0; round < 200; ++round) {
        std::vector<TestEntry> entries;
        for (int i = 0; i < 40; ++i) {
            const bool start = random() % 2 == 0;
            const bool legal = random() % 2 == 0;
            entries.push_back({start ? StartKey : random(),
                               legal ? bookMove("g1f3") : static_cast<std::uint16_t>(random()),
                               static_cast<std::uint16_t>(random())});
        }
        const TemporaryFile file(bookBytes(entries));
        PolyglotBook book(file.path);
        Move move = NoMove;
        std::string error;
        if (!book.probe(startPosition, draws, move, error)) continue;
        ++found;
        // Of this position only pawns and knights can move.
        EXPECT_TRUE(rankOf(from64(move)) == 1 || startPosition.pieceAt(fromSquare(move)) == Knight);
        EXPECT_TRUE(rankOf(to64(move)) == 2 || rankOf(to64(move)) == 3);
    }
    EXPECT_GT(found, 50);
}

TEST(PolyglotBook, AFileThatChangesIsReadWithTheOldCount) {
    const std::string low = bookBytes(std::vector(8, TestEntry{1, 0}));
    const std::string entry = bookBytes({{StartKey, bookMove("e2e4"), 1}});
    const TemporaryFile file(low + entry);
    PolyglotBook book(file.path);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
    // Shrunk below the place where the search looks: nothing more is known, and nothing is said.
    file.write(entry);
    EXPECT_EQ(answer(book, startPosition), "");
    file.write("");
    EXPECT_EQ(answer(book, startPosition), "");
    std::filesystem::remove(file.path);
    EXPECT_EQ(answer(book, startPosition), "");
    // Another book of the same size serves at once; what it has beyond the count is not seen.
    file.write(low + bookBytes({{StartKey, bookMove("d2d4"), 1}}));
    EXPECT_EQ(answer(book, startPosition), "d2d4");
    file.write(low + low + entry);
    EXPECT_EQ(answer(book, startPosition), "");
    // Naming the file again counts again.
    book.setPath(file.path);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
}

TEST(PolyglotBook, AShrunkRunOfEntriesIsNotDrawnFrom) {
    const TestEntry entry{StartKey, bookMove("e2e4"), 1};
    const TemporaryFile file(bookBytes(std::vector(5, entry)));
    PolyglotBook book(file.path);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
    file.write(bookBytes(std::vector(3, entry)) + "\x46");
    EXPECT_EQ(answer(book, startPosition), "");
}

TEST(PolyglotBook, ABookThatAppearsLaterIsFound) {
    const std::string bytes = bookBytes({{StartKey, bookMove("e2e4"), 1}});
    const TemporaryFile file(bytes);
    std::filesystem::remove(file.path);
    PolyglotBook book(file.path);
    EXPECT_EQ(answer(book, startPosition), "");
    file.write(bytes);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
}

#ifdef __linux__
TEST(PolyglotBook, AFileThatCannotBeReadGivesTheSystemsText) {
    const TemporaryFile file(bookBytes({{StartKey, bookMove("e2e4"), 1}}));
    PolyglotBook book(file.path);
    std::string error;
    EXPECT_EQ(answer(book, startPosition, &error), "e2e4");
    std::filesystem::remove(file.path);
    std::filesystem::create_symlink("/proc/self/mem", file.path);  // nothing is at its beginning
    EXPECT_EQ(answer(book, startPosition, &error), "");
    EXPECT_NE(error, "");
    // The text does not stay for the next probe.
    std::filesystem::remove(file.path);
    EXPECT_EQ(answer(book, startPosition, &error), "");
    EXPECT_EQ(error, "");
}

#endif

#ifndef _WIN32
TEST(PolyglotBook, APipeInPlaceOfTheFileDoesNotHang) {
    const TemporaryFile file(bookBytes({{StartKey, bookMove("e2e4"), 1}}));
    PolyglotBook book(file.path);
    EXPECT_EQ(answer(book, startPosition), "e2e4");
    std::filesystem::remove(file.path);
    ASSERT_EQ(mkfifo(file.path.c_str(), 0600), 0);
    EXPECT_EQ(answer(book, startPosition), "");
    book.setPath(file.path);
    EXPECT_EQ(answer(book, startPosition), "");
}
#endif

TEST(PolyglotBook, KeepsTheFirst255CharactersOfAPath) {
    PolyglotBook book(std::string(300, 'x'));
    EXPECT_EQ(book.path(), std::string(255, 'x'));
    book.setPath(std::string(300, 'y'));
    EXPECT_EQ(book.path(), std::string(255, 'y'));
    EXPECT_EQ(answer(book, startPosition), "");
}

TEST(PolyglotBookThreads, ThePathMayChangeWhileProbesRun) {
    const TemporaryFile one(bookBytes({{StartKey, bookMove("e2e4"), 1}}));
    const TemporaryFile two(bookBytes(std::vector<TestEntry>(3, {StartKey, bookMove("d2d4"), 1})));
    PolyglotBook book(one.path);
    std::thread changer([&] {
        for (int i = 0; i < 500; ++i)
            book.setPath(i % 2 == 0 ? two.path : one.path);
    });
    for (int i = 0; i < 500; ++i) {
        const std::string move = answer(book, startPosition);
        EXPECT_TRUE(move == "e2e4" || move == "d2d4") << move;
    }
    changer.join();
    EXPECT_EQ(answer(book, startPosition), "e2e4");
}

}  // namespace
}  // namespace vatro
