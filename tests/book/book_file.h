// tests/book/book_file.h - opening books made by hand, in a file that the test removes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "board/board.h"
#include "support.h"

namespace vatro::test {

/// The book's word for a move in coordinate notation, castling as the king's capture of its rook.
inline std::uint16_t bookMove(const std::string& text) {
    const auto square = [&](int i) { return (text[i] - 'a') | (text[i + 1] - '1') << 3; };
    const int promotion =
        text.size() > 4 ? static_cast<int>(std::string(" nbrq").find(text[4])) : 0;
    return static_cast<std::uint16_t>(square(2) | square(0) << 6 | promotion << 12);
}

struct TestEntry {
    Key key;
    std::uint16_t move;
    std::uint16_t weight = 1;
};

/// The bytes of a book; the entries are not sorted here.
inline std::string bookBytes(const std::vector<TestEntry>& entries) {
    std::string bytes;
    const auto append = [&](std::uint64_t value, int size) {
        for (int i = size - 1; i >= 0; --i)
            bytes += static_cast<char>(value >> 8 * i & 0xFF);
    };
    for (const TestEntry& entry : entries) {
        append(entry.key, 8);
        append(entry.move, 2);
        append(entry.weight, 2);
        append(0xDEADBEEF, 4);  // what the book has learnt; no concern of the reader
    }
    return bytes;
}

/// A file with a name of its own that lives as long as the object.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& bytes) {
        std::random_device random;
        const std::string name =
            "vatro_book_" + std::to_string(random()) + "_" + std::to_string(random());
        path = (std::filesystem::temp_directory_path() / name).string();
        write(bytes);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    void write(const std::string& bytes) const {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    }

    std::string path;
};

}  // namespace vatro::test
