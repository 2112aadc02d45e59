// fuzz/book_fuzz.cpp - any bytes as a book file: every answer is a legal move of the position.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "board/move_generation.h"
#include "book/polyglot_book.h"

using namespace vatro;

namespace {

// Castling both ways, promotions, en passant, check, no kings: the keys stand in the seeds.
const char* const positions[] = {
    startPositionFEN,
    "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1",
    "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1",
    "n1n1k3/PPPP4/8/8/8/8/4pppp/4K1N1 w - - 0 1",
    "n1n1k3/PPPP4/8/8/8/8/4pppp/4K1N1 b - - 0 1",
    "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1",
    "8/8/3p4/KPp4r/1R3p1k/8/4P1P1/8 w - c6 0 1",
    "r3k2r/8/8/8/4r3/8/8/R3K2R w KQkq - 0 1",
    "8/3q4/8/8/8/2P5/8/8 b - - 0 1",
};

/// A file that is removed when the fuzzer ends.
struct BookOnDisk {
    BookOnDisk()
        : path((std::filesystem::temp_directory_path() /
                ("vatro_book_fuzz_" + std::to_string(std::random_device()())))
                   .string()) {}
    ~BookOnDisk() { std::remove(path.c_str()); }

    void write(const std::uint8_t* data, std::size_t size) const {
        // A new file each time: some file systems wait for the disk when an old one is rewritten.
        std::remove(path.c_str());
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (!file || std::fwrite(data, 1, size, file) != size) std::abort();
        std::fclose(file);
    }

    const std::string path;
};

bool isLegalHere(const Board_0x88& board, Move move) {
    MoveList legal;
    generateLegalMoves(board, legal);
    for (const ScoredMove& entry : legal) {
        if (entry.move() == move) return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const BookOnDisk file;
    static Board_0x88 board;
    file.write(data, size);
    PolyglotBook book(file.path);
    std::string error;
    Move move = NoMove;
    Random random(1);
    for (const char* fen : positions) {
        if (!board.setupFromFEN(fen)) std::abort();
        if (book.probe(board, random, move, error) && !isLegalHere(board, move)) std::abort();
    }
    // The file loses its second half after it has been counted.
    file.write(data, size / 2);
    if (book.probe(board, random, move, error) && !isLegalHere(board, move)) std::abort();
    return 0;
}
