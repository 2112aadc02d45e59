// tests/egtb/tablebases_test.cpp - the answers the search gets.
#include "egtb/tablebases.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "egtb/position_index.h"
#include "egtb/table_format.h"
#include "egtb/table_set.h"
#include "test_tables.h"

namespace vatro::egtb {
namespace {

constexpr std::size_t Megabyte = 1 << 20;

/// Initialised with the tables of a directory.
class Tables : public TablebaseState {
  public:
    explicit Tables(const std::string& paths, std::size_t cacheBytes = Megabyte) {
        EXPECT_TRUE(initialise(paths, cacheBytes));
    }
};

std::string answerTo(const TablebaseState& tables, const std::string& fen) {
    return answer(tables, queryOf(positionOf(fen)));
}

TEST(Tablebases, KnowMatesDrawsAndDistances) {
    const Tables tables(smallTables());
    const std::pair<const char*, const char*> cases[] = {
        {"k7/1Q6/1K6/8/8/8/8/8 b", "W 0"},      // mate
        {"k7/8/1K6/8/8/8/8/6Q1 w", "W 1"},      // mate in one
        {"k7/2Q5/1K6/8/8/8/8/8 b", "draw"},     // stalemate
        {"8/8/8/8/8/1q6/k7/8 b", "none"},       // no white king
        {"8/8/8/3k4/8/8/1K6/1b6 w", "draw"},    // no mate with a bishop
        {"8/8/8/8/4k3/8/1q6/K7 w", "draw"},     // the queen is taken
        {"7k/7P/6K1/8/8/8/8/8 b", "draw"},      // pawn stalemate
        {"8/8/7N/8/8/8/8/K1k1B3 w", "W 65"},    // the longest mate with bishop and knight
        {"k1K1b3/8/8/8/8/8/7n/8 b", "B 65"},    // the same with colours and ranks swapped
        {"8/8/8/8/2r5/8/2k5/K6Q w", "W 69"},    // queen against rook at its longest
        {"3k4/3r4/8/8/3R4/8/8/KN6 w", "none"},  // a table that is not there
    };
    for (const auto& [fen, expected] : cases) {
        EXPECT_EQ(answerTo(tables, fen), expected) << fen;
    }
}

TEST(Tablebases, BareKingsAreDrawn) {
    const Tables tables(smallTables());
    EXPECT_EQ(answerTo(tables, "8/8/3k4/8/8/3K4/8/8 w"), "draw");
    EXPECT_EQ(answerTo(tables, "8/8/8/3k4/3K4/8/8/8 w"), "none");
}

TEST(Tablebases, RefuseWhatIsNoLegalPosition) {
    const Tables tables(smallTables());
    const TablebaseState::Query good = queryOf(positionOf("k7/8/1K6/8/8/8/8/6Q1 w"));
    ASSERT_EQ(answer(tables, good), "W 1");
    const std::pair<const char*, std::function<void(TablebaseState::Query&)>> cases[] = {
        {"castling right", [](auto& q) { q.castlingRights = 1; }},
        {"side to move", [](auto& q) { q.sideToMove = 2; }},
        {"king can be taken", [](auto& q) { q.blackSquares[0] = 0, q.whiteSquares[0] = 7; }},
        {"two on a square", [](auto& q) { q.whiteSquares[0] = q.whiteSquares[1]; }},
        {"square off the board", [](auto& q) { q.whiteSquares[0] = 77; }},
        {"unknown type", [](auto& q) { q.whiteTypes[0] = 7; }},
        {"pawn on the last rank", [](auto& q) { q.whiteTypes[0] = Pawn, q.whiteSquares[0] = 63; }},
        {"two kings", [](auto& q) { q.whiteTypes[0] = King; }},
        {"no king", [](auto& q) { q.whiteTypes[1] = Rook; }},
        {"lists of different length", [](auto& q) { q.whiteTypes[2] = Rook; }},
        {"list without end", [](auto& q) { q.whiteSquares = {1, 2, 3, 4, 5, 6}; }},
        {"nobody", [](auto& q) { q.blackSquares[0] = 64, q.blackTypes[0] = 0; }},
        {"en passant without a pawn", [](auto& q) { q.epSquare = 44; }},
        {"en-passant square off the board", [](auto& q) { q.epSquare = -1; }},
    };
    for (const auto& [why, spoil] : cases) {
        TablebaseState::Query query = good;
        spoil(query);
        EXPECT_EQ(answer(tables, query), "none") << why;
    }
}

TEST(Tablebases, BestPlayMatesWhenAnnounced) {
    const Tables tables(smallTables());
    std::mt19937 random(20240607);
    int played = 0;
    for (const char* ending : {"KPK", "KBNK", "KQKR"}) {
        const PositionIndex index(*parseMaterial(ending));
        std::uniform_int_distribution<std::uint64_t> anyNumber(0, index.size() - 1);
        for (int game = 0; game < 40;) {
            Position position;
            if (!index.decode(anyNumber(random), position)) continue;
            if (game & 1) position.sideToMove = Black;
            if (game & 2) position = position.withColoursSwapped();
            TablebaseState::Outcome outcome;
            unsigned plies = 0;
            if (!tables.probe(queryOf(position), true, outcome, plies)) continue;
            ++game;
            if (outcome == TablebaseState::Draw) continue;
            ++played;
            // Each side always has a move that keeps the announced end, and none that is better.
            const Colour winner = outcome == TablebaseState::WhiteMates ? White : Black;
            for (unsigned left = plies; left > 0; --left) {
                std::vector<Position> keeping;
                forEachChild(position, NoEpSquare, [&](const Position& child, int) {
                    TablebaseState::Outcome childOutcome;
                    unsigned childPlies = 0;
                    ASSERT_TRUE(tables.probe(queryOf(child), true, childOutcome, childPlies));
                    const bool keepsOutcome = childOutcome == outcome;
                    if (keepsOutcome && childPlies == left - 1) keeping.push_back(child);
                    if (position.sideToMove == winner) {
                        EXPECT_FALSE(keepsOutcome && childPlies < left - 1);
                    } else {
                        EXPECT_TRUE(keepsOutcome && childPlies <= left - 1);
                    }
                });
                ASSERT_FALSE(keeping.empty()) << ending;
                position = keeping[random() % keeping.size()];
            }
            EXPECT_TRUE(isInCheck(position, position.sideToMove));
            EXPECT_FALSE(hasOrdinaryMove(position));
        }
    }
    EXPECT_GT(played, 60);
}

TEST(Tablebases, CacheOnlyProbesDoNotRead) {
    const TablebaseState::Query query = queryOf(positionOf("8/8/8/8/2r5/8/2k5/K6Q w"));
    Tables tables(smallTables());
    EXPECT_EQ(answer(tables, query, false), "none");
    EXPECT_EQ(tables.statistics().diskReads, 0U);
    EXPECT_EQ(answer(tables, query, true), "W 69");
    EXPECT_EQ(answer(tables, query, false), "W 69");
    EXPECT_EQ(answer(tables, query, true), "W 69");
    EXPECT_EQ(tables.statistics().diskReads, 1U);

    ASSERT_TRUE(tables.initialise(smallTables(), 0));
    EXPECT_EQ(tables.statistics().probes, 0U);
    EXPECT_EQ(answer(tables, query, true), "W 69");
    EXPECT_EQ(answer(tables, query, false), "none") << "nothing is kept without a cache";
}

TEST(Tablebases, ListOfDirectoriesIsSearchedInOrder) {
    TemporaryDirectory wrong;
    writeTableOf(wrong.path(), "KQK", {2});
    const std::string fen = "k7/2Q5/1K6/8/8/8/8/8 b";
    EXPECT_EQ(answerTo(Tables(";" + smallTables() + ";nowhere;" + wrong.path()), fen), "draw");
    EXPECT_EQ(answerTo(Tables(wrong.path() + ";" + smallTables()), fen), "B 1");
    EXPECT_EQ(answerTo(Tables(""), fen), "none");
}

TEST(Tablebases, FilesAreOpenedWhenNeededAndNotAllAtOnce) {
    TemporaryDirectory directory;
    const std::vector<Material> list = allMaterials(4);
    ASSERT_GT(list.size(), std::size_t{TableSet::MostOpenFiles});
    for (const Material& material : list) {
        writeTableOf(directory.path(), material.name(), {codeOfPlies(4)});
    }
    const TableSet tables(directory.path(), 0);
    EXPECT_EQ(tables.openFiles(), 0);
    std::mt19937 random(3);
    for (int round = 0; round < 2; ++round) {
        for (const Material& material : list) {
            const PositionIndex index(material);
            Position position;
            while (!index.decode(random() % index.size(), position) || !isLegal(position)) {
            }
            std::uint64_t diskReads = 0;
            EXPECT_EQ(tables.probe(position, NoEpSquare, TableSet::Source::Disk, diskReads),
                      codeOfPlies(4))
                << material.name();
            EXPECT_LE(tables.openFiles(), TableSet::MostOpenFiles);
        }
    }
}

TEST(Tablebases, FileThatIsReplacedWhileInUseGivesNoAnswer) {
    TemporaryDirectory directory;
    writeTableOf(directory.path(), "KQK", {codeOfPlies(4)});
    Tables tables(directory.path());
    // Another table under the name: its numbers may mean other positions.
    writeTableOf(directory.path(), "KRK", {codeOfPlies(2), codeOfPlies(6)});
    std::filesystem::rename(directory.path() + "/KRK" + TableSuffix,
                            directory.path() + "/KQK" + TableSuffix);
    EXPECT_EQ(answerTo(tables, "k7/2Q5/1K6/8/8/8/8/8 b"), "none");
    EXPECT_NE(tables.takeNotice(), "");
}

TEST(Tablebases, UnusableFilesAreNamedOnce) {
    TemporaryDirectory directory;
    Tables tables(directory.path());
    EXPECT_EQ(tables.takeNotice(), "") << "an empty directory is no fault";

    std::filesystem::copy(smallTables() + "/KQK" + TableSuffix,
                          directory.path() + "/KRK" + TableSuffix);
    writeFile(directory.path() + "/KBK" + TableSuffix, {'f', 'o', 'r', 'e', 'i', 'g', 'n'});
    ASSERT_TRUE(tables.initialise(directory.path(), Megabyte));
    const std::string notice = tables.takeNotice();
    EXPECT_EQ(notice,
              "tablebases: ignored: KBK.gtb.cp4 is not a table of this program; move it away to "
              "have one made (and 1 more)");
    EXPECT_EQ(tables.takeNotice(), "");
    EXPECT_EQ(answerTo(tables, "8/8/8/8/8/2k5/1R6/K7 w"), "none") << "a renamed table";
}

TEST(Tablebases, FileThatVanishesGivesNoAnswer) {
    TemporaryDirectory directory;
    for (const char* const ending : {"KQK", "KRK"}) {
        std::filesystem::copy_file(smallTables() + '/' + ending + TableSuffix,
                                   directory.path() + '/' + ending + TableSuffix);
    }
    Tables tables(directory.path());
    EXPECT_EQ(tables.tableCount(), 2U);
    for (const auto& file : std::filesystem::directory_iterator(directory.path())) {
        std::filesystem::resize_file(file.path(), 100);
    }
    EXPECT_EQ(answerTo(tables, "k7/2Q5/1K6/8/8/8/8/8 b"), "none");
    EXPECT_EQ(
        tables.takeNotice(),
        "tablebases: ignored: KQK.gtb.cp4 can no longer be read; make it again with vatro-tbgen");
    EXPECT_EQ(answerTo(tables, "k7/2Q5/1K6/8/8/8/8/8 b"), "none");
    EXPECT_EQ(tables.takeNotice(), "") << "said once";
    EXPECT_EQ(answerTo(tables, "8/8/8/8/8/2k5/1R6/K7 w"), "none");
    EXPECT_EQ(
        tables.takeNotice(),
        "tablebases: ignored: KRK.gtb.cp4 can no longer be read; make it again with vatro-tbgen");
}

TEST(Tablebases, CaptureThatAvertsAStalemateMustBeMade) {
    // The black king has no move and the pawn on a4 only the capture of the pawn on b4.
    const Position position = positionOf("8/8/8/8/pP6/K2B4/8/k7 b");
    TemporaryDirectory directory;
    writeTableOf(directory.path(), "KBPKP", {DrawCode});
    writeTableOf(directory.path(), "KBKP", {codeOfPlies(3)});
    const Tables tables(directory.path());
    EXPECT_EQ(answer(tables, queryOf(position)), "draw");
    EXPECT_EQ(answer(tables, queryOf(position, as64(B3))), "W 4");
    std::filesystem::remove(directory.path() + "/KBKP" + TableSuffix);
    EXPECT_EQ(answer(Tables(directory.path()), queryOf(position, as64(B3))), "none")
        << "half an answer is none";
}

TEST(Tablebases, NotInitialisedFindsNothing) {
    TablebaseState tables;
    EXPECT_FALSE(tables.initialised());
    EXPECT_EQ(answerTo(tables, "k7/2Q5/1K6/8/8/8/8/8 b"), "none");
    ASSERT_TRUE(tables.initialise(smallTables(), Megabyte));
    EXPECT_TRUE(tables.initialised());
    tables.shutDown();
    EXPECT_FALSE(tables.initialised());
    EXPECT_EQ(answerTo(tables, "k7/2Q5/1K6/8/8/8/8/8 b"), "none");
}

TEST(TablebaseThreads, TablesMayBeReplacedUnderProbes) {
    TemporaryDirectory directory;
    writeTableOf(directory.path(), "KQK", {0, 2, 4, 3});
    TablebaseState tables;
    std::atomic<bool> stop{false};
    std::atomic<int> contradictions{0};
    std::atomic<int> found{0};
    // Values follow the number of the position, so each has one right answer.
    const Position position = positionOf("8/8/8/2k5/8/8/1Q6/K7 w");
    std::string expected;
    {
        const Tables alone(directory.path());
        expected = answer(alone, queryOf(position));
        ASSERT_NE(expected, "none");
    }
    constexpr int ThreadCount = 3;
    std::vector<std::thread> threads;
    threads.reserve(ThreadCount);
    for (int i = 0; i < ThreadCount; ++i) {
        threads.emplace_back([&, i] {
            while (!stop) {
                const std::string got = answer(tables, queryOf(position), i != 0);
                if (got == expected) ++found;
                if (got != expected && got != "none") ++contradictions;
            }
        });
    }
    for (int i = 0; i < 60 || found < 100; ++i) {
        ASSERT_TRUE(tables.initialise(directory.path(), i % 3 == 0 ? 0 : Megabyte));
        tables.takeNotice();
        if (i % 10 == 0) tables.shutDown();
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(contradictions, 0);
}

/// What the moves of a position give, en passant included, by asking about each child.
std::string answerByMoves(const TablebaseState& tables, const Position& position, Square64 ep) {
    int best = -100000;
    bool hasMove = false;
    forEachChild(position, ep, [&](const Position& child, Square64 childEp) {
        TablebaseState::Outcome outcome;
        unsigned plies = 0;
        ASSERT_TRUE(tables.probe(queryOf(child, childEp), true, outcome, plies));
        hasMove = true;
        const int distance = static_cast<int>(plies);
        int score = 0;
        if (outcome != TablebaseState::Draw) {
            const bool isWin =
                (outcome == TablebaseState::WhiteMates) == (position.sideToMove == White);
            score = isWin ? 1000 - distance : distance - 1000;
        }
        best = std::max(best, score);
    });
    const char* us = position.sideToMove == White ? "W " : "B ";
    const char* them = position.sideToMove == White ? "B " : "W ";
    if (!hasMove)
        return isInCheck(position, position.sideToMove) ? std::string(them) + "0" : "draw";
    if (best == 0) return "draw";
    return best > 0 ? us + std::to_string(1001 - best) : them + std::to_string(best + 1001);
}

TEST(FourPieces, EnPassantIsTakenIntoAccount) {
    const Tables tables(tablesOf({"KPKP"}), 16 * Megabyte);
    int changed = 0;
    Position position;
    const PositionIndex index(*parseMaterial("KPKP"));
    // White's pawn has just made its double step past the black one.
    for (std::uint64_t number = 0; number < index.size(); ++number) {
        if (!index.decode(number, position)) continue;
        const Square64 white = position.pieces[White].squares[1];
        const Square64 black = position.pieces[Black].squares[1];
        if (rankOf(white) != 3 || !(pawnAttacks[White][white - 8] & maskOf(black))) continue;
        position.sideToMove = Black;
        const Square64 ep = white - 8;
        if ((position.occupied() & (maskOf(ep) | maskOf(ep - 8))) || !isLegal(position)) continue;
        const std::string with = answer(tables, queryOf(position, ep));
        ASSERT_EQ(with, answerByMoves(tables, position, ep)) << number;
        const Position swapped = position.withColoursSwapped();
        const std::string swappedAnswer = answer(tables, queryOf(swapped, mirrorRanks(ep)));
        ASSERT_EQ(swappedAnswer, answerByMoves(tables, swapped, mirrorRanks(ep))) << number;
        changed += with != answer(tables, queryOf(position));
    }
    EXPECT_GT(changed, 100);
}

}  // namespace
}  // namespace vatro::egtb
