// tests/eval/pawn_hash_test.cpp - stored structures come back whole or not at all.
#include "eval/pawn_hash.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

bool same(const PawnStructure& a, const PawnStructure& b) {
    return a.passed[White] == b.passed[White] && a.passed[Black] == b.passed[Black] &&
           a.score == b.score && a.openFiles == b.openFiles && a.halfOpenFiles == b.halfOpenFiles;
}

constexpr Key FirstKey = 0x123456789ABCDEF0;
constexpr Key SecondKey = FirstKey ^ (Key{1} << 40);  // the same entry
constexpr PawnStructure first{{0x00FF00, 0xFF0000000000}, {-300, 20}, 0x81, 0x18};
constexpr PawnStructure second{{0x0F0000, 0x00F000000000}, {5, -1}, 0xFF, 0x01};

struct PawnHash : testing::Test {
    PawnHash() { EXPECT_TRUE(table.resize(1)); }
    bool finds(Key key, const PawnStructure& expected) {
        PawnStructure found;
        return table.probe(key, found) && same(found, expected);
    }
    bool misses(Key key) {
        PawnStructure found;
        return !table.probe(key, found);
    }
    PawnHashTable table;
};
using PawnHashThreads = PawnHash;

TEST_F(PawnHash, KeepsTheLatestOfAnIndex) {
    EXPECT_TRUE(misses(FirstKey));
    table.store(FirstKey, first);
    EXPECT_TRUE(finds(FirstKey, first));
    EXPECT_TRUE(misses(SecondKey));
    table.store(SecondKey, second);
    EXPECT_TRUE(finds(SecondKey, second));
    EXPECT_TRUE(misses(FirstKey));
    table.clear();
    EXPECT_TRUE(misses(SecondKey));
}

TEST_F(PawnHash, TornEntryMatchesNoKey) {
    PawnHashEntry& entry = table.bucketOf(FirstKey).entries[0];
    table.store(SecondKey, second);
    std::uint64_t others[4];
    for (int word = 0; word < 4; ++word)
        others[word] = entry.words[word];
    for (unsigned torn = 1; torn < 15; ++torn) {  // the words that come from the other writer
        table.store(FirstKey, first);
        for (int word = 0; word < 4; ++word) {
            if (torn & (1U << word)) entry.words[word] = others[word];
        }
        EXPECT_TRUE(misses(FirstKey)) << torn;
        EXPECT_TRUE(misses(SecondKey)) << torn;
    }
}

TEST_F(PawnHashThreads, ReadersSeeWholeEntries) {
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; i < 200000; ++i) {
            table.store(i & 1 ? FirstKey : SecondKey, i & 1 ? first : second);
        }
        done = true;
    });
    int hits = 0;
    while (!done || hits == 0) {
        for (const Key key : {FirstKey, SecondKey}) {
            PawnStructure found;
            if (!table.probe(key, found)) continue;
            ++hits;
            EXPECT_TRUE(same(found, key == FirstKey ? first : second));
        }
    }
    writer.join();
    EXPECT_TRUE(finds(FirstKey, first)) << "the last one written";
}

}  // namespace
}  // namespace vatro
