// tests/support.h - what the tests share: boards from text, moves as text, random games.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "board/board.h"
#include "board/make_move.h"
#include "board/move_generation.h"

namespace vatro {

/// The board of a FEN that must be acceptable.
inline std::unique_ptr<Board_0x88> boardOf(const std::string& fen) {
    auto board = std::make_unique<Board_0x88>();
    EXPECT_TRUE(board->setupFromFEN(fen.c_str())) << fen;
    return board;
}

/// The legal moves as text, in generation order.
inline std::vector<std::string> legalMoves(const Board_0x88& board) {
    MoveList list;
    generateLegalMoves(board, list);
    std::vector<std::string> texts;
    for (const ScoredMove& entry : list) {
        texts.push_back(moveToText(entry.move()));
    }
    return texts;
}
inline std::vector<std::string> legalMoves(const std::string& fen) {
    return legalMoves(*boardOf(fen));
}

/// The legal move with the given text, NoMove when there is none.
inline Move findMove(const Board_0x88& board, std::string_view text) {
    MoveList list;
    generateLegalMoves(board, list);
    for (const ScoredMove& entry : list) {
        if (moveToText(entry.move()) == text) return entry.move();
    }
    return NoMove;
}

/// The same position with the colours exchanged and the ranks turned around.
inline std::string mirroredFEN(const std::string& fen) {
    const std::size_t blank = fen.find(' ');
    std::string placement;
    for (std::size_t end = blank; end != std::string::npos;) {
        const std::size_t slash = end ? fen.rfind('/', end - 1) : std::string::npos;
        const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
        placement += fen.substr(start, end - start) + '/';
        end = slash;
    }
    placement.pop_back();
    std::string rest = fen.substr(blank);
    rest[1] = rest[1] == 'w' ? 'b' : 'w';
    const auto swapCase = [](char letter) {
        const auto byte = static_cast<unsigned char>(letter);
        return static_cast<char>(std::isupper(byte) ? std::tolower(byte) : std::toupper(byte));
    };
    std::transform(placement.begin(), placement.end(), placement.begin(), swapCase);
    const std::size_t castling = 3;
    const std::size_t castlingEnd = rest.find(' ', castling);
    std::string rights;
    for (const char right : std::string("KQkq")) {
        const std::size_t found = rest.find(swapCase(right), castling);
        if (found < castlingEnd) rights += right;
    }
    if (rights.empty()) rights = "-";
    std::string tail = rest.substr(castlingEnd);
    if (tail.size() > 2 && tail[1] != '-') tail[2] = static_cast<char>('1' + '8' - tail[2]);
    return placement + rest.substr(0, castling) + rights + tail;
}

/// Every byte that belongs to the position and the line that led to it.
inline std::string positionBytes(const Board_0x88& board) {
    const auto* bytes = reinterpret_cast<const char*>(&board);
    const auto* perftEnd = reinterpret_cast<const char*>(board.perftKeys + board.perftPly + 1);
    const auto* records = reinterpret_cast<const char*>(board.plyRecords);
    const auto* recordsEnd = reinterpret_cast<const char*>(board.plyRecords + board.ply + 1);
    return std::string(bytes, perftEnd) + std::string(records, recordsEnd);
}

/// A random number generator of the tests' own, the same everywhere.
class TestRandom {
  public:
    explicit TestRandom(std::uint64_t seed) : state(seed) {}

    unsigned below(unsigned limit) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<unsigned>((state >> 33) % limit);
    }

  private:
    std::uint64_t state;
};

/// Plays random legal moves from a position until there is none or `plies` have been made, and
/// calls `visit(board)` at each position, the first included.
template <typename Visit>
void forEachRandomPosition(const std::string& fen,
                           unsigned plies,
                           TestRandom& random,
                           Visit visit) {
    const auto board = boardOf(fen);
    for (unsigned i = 0;; ++i) {
        visit(*board);
        MoveList list;
        generateLegalMoves(*board, list);
        if (list.count == 0 || i == plies) return;
        UndoRecord undo;
        makeMove(*board, list.moves[random.below(list.count)].move(), undo);
    }
}

/// Positions of the published perft table: castling, en passant, promotions and pins of all sorts.
inline constexpr const char* richPositions[] = {
    startPositionFEN,
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "r3k2r/Pppp1ppp/1b3nbN/nP6/BBP1P3/q4N2/Pp1P2PP/R2Q1RK1 w kq - 0 1",
    "rnbq1k1r/pp1Pbppp/2p5/8/2B5/8/PPP1NnPP/RNBQK2R w KQ - 1 8",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
};

/// Positions that no game reaches but the reader accepts.
inline constexpr const char* oddPositions[] = {
    "8/8/8/8/8/8/8/8 w - -",                                             // nothing at all
    "8/2p1p3/8/3P4/8/8/3q4/8 w - - 0 1",                                 // no kings
    "4k3/8/8/8/8/8/8/R6Q b - - 0 1",                                     // one king
    "PPPPPPPP/8/8/4k3/4K3/8/8/pppppppp w - - 0 1",                       // pawns on their last rank
    "pppppppp/8/8/4k3/4K3/8/8/PPPPPPPP b - - 0 1",                       // pawns behind their first
    "4k3/4R3/8/8/8/8/8/4K3 w - - 0 1",                                   // a king can be captured
    "rnb1kbnr/pppp1ppp/8/4p3/4P2q/5P2/PPPP2PP/RNBQKBNR b KQkq - 255 1",  // so here, and the clock
    "kK6/8/8/8/8/8/8/8 w - - 0 1",                                       // kings touch
    "QQQQQQQQ/Q6k/8/8/8/8/8/K7 b - - 0 1",                               // nine queens
    "4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1",
};

}  // namespace vatro
