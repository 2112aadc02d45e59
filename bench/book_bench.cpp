// bench/book_bench.cpp - the time of a probe in a large book, with the file in the system's cache.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include <benchmark/benchmark.h>

#include "book/polyglot_book.h"

namespace vatro {
namespace {

constexpr int EntryCount = 1'000'000;
constexpr int EntriesOfPosition = 4;

void append(std::string& bytes, std::uint64_t value, int size) {
    for (int i = size - 1; i >= 0; --i)
        bytes += static_cast<char>(value >> 8 * i & 0xFF);
}

/// A sorted book of a million entries, four of them moves of the position.
std::string largeBook(Key key) {
    constexpr std::uint16_t moves[EntriesOfPosition] = {0x31C, 0x2DB, 0x195,
                                                        0x29A};  // e4 d4 Nf3 c4
    constexpr Key Step = ~Key{0} / EntryCount;
    std::string bytes;
    bytes.reserve(16UL * EntryCount);
    Key stored = 0;
    for (int i = 0; i < EntryCount - EntriesOfPosition; ++i, stored += Step) {
        if (stored <= key && key - stored < Step) {
            for (const std::uint16_t move : moves) {
                append(bytes, key, 8);
                append(bytes, move, 2);
                append(bytes, 1, 2);
                append(bytes, 0, 4);
            }
        }
        append(bytes, stored, 8);
        append(bytes, 0, 8);
    }
    return bytes;
}

/// The book on disk, as long as the benchmark runs.
struct BookOnDisk {
    explicit BookOnDisk(const std::string& bytes)
        : path((std::filesystem::temp_directory_path() /
                ("vatro_book_bench_" + std::to_string(std::random_device()())))
                   .string()) {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (!file) return;
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    ~BookOnDisk() { std::remove(path.c_str()); }

    const std::string path;
};

void probe(benchmark::State& state, const char* fen, bool isInBook) {
    static Board_0x88 start;
    static Board_0x88 board;
    if (!start.setupFromFEN(startPositionFEN) || !board.setupFromFEN(fen)) return;
    const BookOnDisk file(largeBook(bookKey(start)));
    PolyglotBook book(file.path);
    std::string error;
    Move move = NoMove;
    Random random(1);
    for (auto _ : state) {
        if (book.probe(board, random, move, error) != isInBook) state.SkipWithError("wrong answer");
    }
}

BENCHMARK_CAPTURE(probe, hit, startPositionFEN, true)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(probe, miss, "4k3/8/8/8/8/8/8/4K3 w - - 0 1", false)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace vatro

BENCHMARK_MAIN();
