// tests/tools/perft_test.cpp - the perft hash must not change a count of leaves, and the counts of
// nodes follow its rules.
#include "tools/perft.h"

#include <cstdio>
#include <fstream>
#include <vector>

#include "support.h"
#include "tools/position_file_test.h"

namespace vatro {
namespace {

/// What a function writes to standard output.
template <typename Function>
std::string outputOf(Function function) {
    testing::internal::CaptureStdout();
    function();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

struct Counts {
    std::uint64_t leaves;
    std::uint64_t nodes;
    bool operator==(const Counts&) const = default;
};

Counts perft(Board_0x88& board, unsigned depth, PerftHashTable& table) {
    EXPECT_TRUE(table.prepare());
    preparePerftKeys(board);
    Counts counts{};
    StopCheck never;
    counts.leaves = perftCount(board, depth, table, counts.nodes, never);
    return counts;
}

Counts perft(const std::string& fen, unsigned depth, unsigned megabytes) {
    PerftHashTable table(megabytes);
    Counts counts{};
    outputOf([&] { counts = perft(*boardOf(fen), depth, table); });
    return counts;
}

/// Count and hash written down word for word: every node generates its list.
class PlainPerft {
  public:
    explicit PlainPerft(unsigned megabytes) : entries((std::size_t{megabytes} << 20) / 16) {}

    std::uint64_t count(Board_0x88& board, unsigned depth) {
        ++nodes;
        MoveList list;
        generateLegalMoves(board, list);
        if (depth == 1) return list.count;
        const Key key = board.perftKeys[board.perftPly];
        const Key keyBits = key & 0xFFFFFFFFFFFF;
        Entry* bucket = &entries[(static_cast<std::uint32_t>(key) & (entries.size() / 4 - 1)) * 4];
        for (int i = 0; i < 4; ++i) {
            if (bucket[i].keyBits != keyBits) continue;
            if (bucket[i].depth == depth) return bucket[i].leaves;
            break;
        }
        std::uint64_t leaves = 0;
        for (const ScoredMove& entry : list) {
            UndoRecord undo;
            makeMovePerft(board, entry.move(), undo);
            leaves += count(board, depth - 1);
            unmakeMovePerft(board, entry.move(), undo);
        }
        *chooseSlot(bucket, keyBits) = {keyBits, leaves, depth};
        return leaves;
    }

    std::uint64_t nodes = 0;

  private:
    struct Entry {
        Key keyBits = 0;
        std::uint64_t leaves = 0;
        unsigned depth = 0;
    };

    static Entry* chooseSlot(Entry* bucket, Key keyBits) {
        for (int i = 0; i < 4; ++i) {
            if (bucket[i].keyBits == keyBits) return bucket + i;
        }
        for (int i = 0; i < 4; ++i) {
            if (bucket[i].keyBits == 0) return bucket + i;
        }
        Entry* smallest = bucket;
        for (int i = 1; i < 4; ++i) {
            if (bucket[i].depth < smallest->depth) smallest = bucket + i;
        }
        return smallest;
    }

    std::vector<Entry> entries;
};

TEST(Perft, LeavesAndNodesFollowTheRulesOfTheHashTable) {
    // One megabyte holds 65536 entries, which these counts overflow: replacement is at work.
    const std::pair<const char*, unsigned> cases[] = {
        {richPositions[0], 5}, {richPositions[1], 4}, {richPositions[2], 6}, {richPositions[5], 5}};
    for (const auto& [fen, depth] : cases) {
        PlainPerft plain(1);
        const std::uint64_t leaves = plain.count(*boardOf(fen), depth);
        EXPECT_EQ(perft(fen, depth, 1), (Counts{leaves, plain.nodes})) << fen;
        EXPECT_EQ(perft(fen, depth, 64).leaves, leaves) << fen;
    }
}

TEST(Perft, DepthOneIsOneNode) {
    EXPECT_EQ(perft(startPositionFEN, 1, 1), (Counts{20, 1}));
    EXPECT_EQ(perft("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1", 1, 1), (Counts{0, 1}));
    EXPECT_EQ(perft("7k/5K2/6Q1/8/8/8/8/8 b - - 0 1", 63, 1), (Counts{0, 1}));
}

TEST(Perft, RunsAlikeEachTimeAndAfterMovesOfAGame) {
    PerftHashTable table(1);
    const auto board = boardOf(startPositionFEN);
    EXPECT_EQ(outputOf([&] { perft(*board, 3, table); }), "# new size of Perft hash: 1 MB\n");
    UndoRecord undo;
    makeMove(*board, findMove(*board, "e2e4"), undo);
    const std::string fen = board->toFEN();
    Counts first{};
    Counts second{};
    EXPECT_EQ(outputOf([&] {
                  first = perft(*board, 4, table);
                  second = perft(*board, 4, table);
              }),
              "");
    EXPECT_EQ(first, second);
    EXPECT_EQ(first, perft(fen, 4, 1));
    EXPECT_EQ(board->toFEN(), fen);
    EXPECT_TRUE(isConsistent(*board));
}

TEST(PerftHash, AnEqualKeyIsReplacedThenAnEmptyEntryThenTheSmallestDepth) {
    PerftHashTable table(1);
    outputOf([&] { ASSERT_TRUE(table.prepare()); });
    EXPECT_EQ(table.entryCount(), 65536U);
    const auto key = [](std::uint64_t n) { return (n << 32) | 5; };  // all in one bucket
    const auto count = [&](std::uint64_t n, unsigned depth) {
        const PerftEntry* entry = table.probe(key(n), depth);
        return entry ? static_cast<int>(entry->leafCount) : -1;
    };
    table.store(key(1), 10, 4);
    table.store(key(2), 20, 2);
    table.store(key(1), 11, 3);  // the same key, less depth
    EXPECT_EQ(count(1, 4), -1);
    EXPECT_EQ(count(1, 3), 11);
    table.store(key(3), 30, 2);
    table.store(key(4), 40, 5);
    EXPECT_EQ(table.fillPercentage(), 4 * 100.0 / 65536);
    table.store(key(5), 50, 1);  // for the first of the two of depth 2, although it has less
    EXPECT_EQ(count(2, 2), -1);
    EXPECT_EQ(count(3, 2), 30);
    EXPECT_EQ(count(5, 1), 50);
    EXPECT_EQ(count(5 | (1 << 20), 1), 50) << "the key's upper 16 bits are not compared";
}

TEST(Divide, PrintsEachMoveAndItsLeaves) {
    const char* fen = "4k3/P7/8/8/8/8/8/4K2r w - - 0 1";  // in check
    const auto board = boardOf(fen);
    PerftHashTable table(1);
    outputOf([&] { ASSERT_TRUE(table.prepare()); });
    StopCheck never;
    std::uint64_t nodes = 0;
    std::uint64_t leaves = 0;
    EXPECT_EQ(outputOf([&] { leaves = divideRoot(*board, 1, table, nodes, never); }),
              "e1e2 1\ne1d2 1\ne1f2 1\n");
    EXPECT_EQ(leaves, 3U);
    EXPECT_EQ(nodes, 1U);

    nodes = 0;
    const std::string start =
        outputOf([&] { leaves = divideRoot(*boardOf(startPositionFEN), 3, table, nodes, never); });
    EXPECT_EQ(leaves, 8902U);
    EXPECT_EQ(start.substr(0, 9), "b1a3 400\n");
    EXPECT_NE(start.find("e2e4 600\n"), std::string::npos);
    const auto stalemate = boardOf("k7/8/1Q6/8/8/8/8/K7 b - - 0 1");
    EXPECT_EQ(outputOf([&] { divideRoot(*stalemate, 3, table, nodes, never); }), "");
}

/// Says yes from the given question on.
StopCheck stopAt(int question) {
    return StopCheck([question, asked = 0]() mutable { return ++asked >= question; });
}

TEST(StoppedPerft, LeavesNoWrongCountBehind) {
    const auto board = boardOf(richPositions[1]);
    PerftHashTable table(1);
    outputOf([&] { ASSERT_TRUE(table.prepare()); });
    preparePerftKeys(*board);
    const std::string fen = board->toFEN();
    std::uint64_t nodes = 0;
    std::uint64_t before = 0;
    for (const int question : {1, 2, 20, 25}) {
        StopCheck stop = stopAt(question);
        const std::uint64_t leaves = perftCount(*board, 4, table, nodes, stop);
        EXPECT_TRUE(stop.hasStopped());
        EXPECT_GE(leaves, before);  // with what the table knows from the runs before
        EXPECT_LT(leaves, 4085603U);
        EXPECT_EQ(board->toFEN(), fen);
        before = leaves;
    }
    StopCheck never;
    EXPECT_EQ(perftCount(*board, 4, table, nodes, never), 4085603U);
}

TEST(StoppedPerft, DividePrintsTheMovesThatItHasCounted) {
    const auto board = boardOf(startPositionFEN);
    PerftHashTable table(1);
    outputOf([&] { ASSERT_TRUE(table.prepare()); });
    std::uint64_t nodes = 0;
    std::uint64_t leaves = 0;
    StopCheck stop = stopAt(3);
    EXPECT_EQ(outputOf([&] { leaves = divideRoot(*board, 4, table, nodes, stop); }),
              "b1a3 8885\nb1c3 9755\n");
    EXPECT_EQ(leaves, 8885U + 9755U);
}

TEST(PerftTotals, AreFiveLines) {
    EXPECT_EQ(perftTotalsText({8902, 4215, 105, 0.25}, "# "),
              "# Total leaves: 8902\n# Total nodes:  4215\n# Time elapsed: 1.05 s\n"
              "# Nodes/second: 4014\n# perftHashFull%:  0.25\n");
    EXPECT_EQ(perftTotalsText({20, 1, 0, 0}, ""),
              "Total leaves: 20\nTotal nodes:  1\nTime elapsed: 0.00 s\nNodes/second: 0\n"
              "# perftHashFull%:  0\n");
}

TEST(PositionFile, ReportsEveryLine) {
    const std::string path = testing::TempDir() + "vatro_positions.txt";
    {
        std::ofstream file(path, std::ios::binary);
        file << "8/8/8/8/8/8/8/8 w - -  \r\n\nnonsense";
    }
    StopCheck never;
    const auto board = boardOf(startPositionFEN);
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(runPositionFileTest(*board, path.c_str(), never)); }),
              "Running test no. 1 for FEN:\n8/8/8/8/8/8/8/8 w - -\n\n\n"
              "Running test no. 2 for FEN:\n\n\n# ERROR: illegal FEN: \"\"\n\n"
              "Running test no. 3 for FEN:\nnonsense\n\n# ERROR: illegal FEN: \"nonsense\"\n\n");
    {
        std::ofstream file(path, std::ios::binary);
        file << std::string(127 + 5, 'x') << '\n';
    }
    const std::string split =
        outputOf([&] { EXPECT_TRUE(runPositionFileTest(*board, path.c_str(), never)); });
    EXPECT_NE(split.find("no. 2 for FEN:\nxxxxx\n\n"), std::string::npos) << split;
    std::remove(path.c_str());
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(runPositionFileTest(*board, path.c_str(), never)); }),
              "# ERROR: failed to open file \"" + path + "\" for reading\n");
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(runPositionFileTest(*board, "/", never)); }),
              "# ERROR: failed to open file \"/\" for reading\n");
}

}  // namespace
}  // namespace vatro
