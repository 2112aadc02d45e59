// book/polyglot_book.h - a move from an opening book file in the Polyglot format.
//
// Nothing of the file stays in memory: every probe opens it, searches it and closes it, so that a
// book may have any size and may be replaced while the engine runs.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "base/random.h"
#include "board/board.h"

namespace vatro {

/// The key of a position in Polyglot books.
Key bookKey(const Board_0x88& board);

/// A book file by its path. A file that is missing or that makes no sense has no moves.
class PolyglotBook {
  public:
    static constexpr std::size_t MaxPathLength = 255;  // characters

    static constexpr char DefaultPath[] = "book.bin";

    explicit PolyglotBook(std::string path = DefaultPath);

    /// Sets another file; at most MaxPathLength characters are kept. Any thread, at any time: a
    /// probe that runs goes on with the old file.
    void setPath(const std::string& path);
    std::string path() const;

    /// Draws a legal move of the position at random, in proportion to the weights. False when the
    /// book has none, or when the one drawn is illegal. `error` then holds the system's message if
    /// the file could not be read; otherwise it is empty.
    [[nodiscard]] bool probe(const Board_0x88& board,
                             Random& random,
                             Move& move,
                             std::string& error);

  private:
    mutable std::mutex mutex;  // guards the fields below; never held while the file is read
    std::string filePath;
    /// Counted by the first probe that finds a book; 0 until then.
    std::uint32_t entryCount = 0;
};

}  // namespace vatro
