// bench/random_games_bench.cpp - random games per second, beside a plain board that plays the same.
//
// The plain board is what one would write first: 64 letters, moves that ignore checks, each tried
// on a copy whose king is then looked for, statistics counted square by square at every position.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "board/game.h"
#include "tools/random_games.h"

namespace {

struct PlainMove {
    int from;
    int to;
    char promotion = '.';
};

struct PlainBoard {
    std::array<char, 64> squares;  // a1 first; white pieces in capitals, '.' when empty
    bool whiteToMove = true;
    bool mayCastle[2][2] = {{true, true}, {true, true}};  // by side (Black first), queen side first
    int epSquare = -1;
    int clock = 0;

    PlainBoard() {
        const char* start = "RNBQKBNRPPPPPPPP................................pppppppprnbqkbnr";
        std::copy_n(start, 64, squares.begin());
    }

    bool operator==(const PlainBoard& other) const {
        return squares == other.squares && whiteToMove == other.whiteToMove &&
               epSquare == other.epSquare && mayCastle[0][0] == other.mayCastle[0][0] &&
               mayCastle[0][1] == other.mayCastle[0][1] &&
               mayCastle[1][0] == other.mayCastle[1][0] && mayCastle[1][1] == other.mayCastle[1][1];
    }

    bool isWhite(int square) const {
        return std::isupper(static_cast<unsigned char>(squares[square]));
    }
    bool isEmpty(int square) const { return squares[square] == '.'; }
    bool isOwn(int square) const { return !isEmpty(square) && isWhite(square) == whiteToMove; }
    bool isEnemy(int square) const { return !isEmpty(square) && isWhite(square) != whiteToMove; }

    /// The square a step away, -1 off the board.
    static int step(int square, int files, int ranks) {
        const int file = square % 8 + files;
        const int rank = square / 8 + ranks;
        return file < 0 || file > 7 || rank < 0 || rank > 7 ? -1 : rank * 8 + file;
    }

    bool isAttacked(int square, bool byWhite) const;
    std::vector<PlainMove> pseudoLegalMoves() const;
    void addPawnMoves(int from, std::vector<PlainMove>& moves) const;
    void addCastling(int from, std::vector<PlainMove>& moves) const;
    void make(const PlainMove& move);
    std::vector<PlainMove> legalMoves() const;
};

constexpr int directions[8][2] = {{1, 0}, {0, 1},  {-1, 0},  {0, -1},
                                  {1, 1}, {-1, 1}, {-1, -1}, {1, -1}};
constexpr int jumps[8][2] = {{1, 2},   {2, 1},   {2, -1}, {1, -2},
                             {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};

bool PlainBoard::isAttacked(int square, bool byWhite) const {
    const auto holds = [&](int where, char piece) {
        return where >= 0 &&
               squares[where] ==
                   (byWhite ? static_cast<char>(std::toupper(static_cast<unsigned char>(piece)))
                            : piece);
    };
    const int behind = byWhite ? -1 : 1;
    if (holds(step(square, -1, behind), 'p') || holds(step(square, 1, behind), 'p')) return true;
    for (const auto& [files, ranks] : jumps) {
        if (holds(step(square, files, ranks), 'n')) return true;
    }
    for (const auto& [files, ranks] : directions) {
        int where = step(square, files, ranks);
        if (holds(where, 'k')) return true;
        while (where >= 0 && isEmpty(where)) {
            where = step(where, files, ranks);
        }
        if (holds(where, files && ranks ? 'b' : 'r') || holds(where, 'q')) return true;
    }
    return false;
}

void PlainBoard::addPawnMoves(int from, std::vector<PlainMove>& moves) const {
    const int ahead = whiteToMove ? 1 : -1;
    const auto add = [&](int to) {
        if (to / 8 == 0 || to / 8 == 7) {
            for (const char piece : {'q', 'n', 'r', 'b'}) {
                moves.push_back({from, to, piece});
            }
        } else {
            moves.push_back({from, to});
        }
    };
    for (const int side : {-1, 1}) {
        const int to = step(from, side, ahead);
        if (to >= 0 && (isEnemy(to) || to == epSquare)) add(to);
    }
    const int one = step(from, 0, ahead);
    if (one < 0 || !isEmpty(one)) return;
    add(one);
    const int two = step(one, 0, ahead);
    if (from / 8 == (whiteToMove ? 1 : 6) && isEmpty(two)) moves.push_back({from, two});
}

void PlainBoard::addCastling(int from, std::vector<PlainMove>& moves) const {
    if (isAttacked(from, !whiteToMove)) return;
    if (mayCastle[whiteToMove][1] && isEmpty(from + 1) && isEmpty(from + 2) &&
        !isAttacked(from + 1, !whiteToMove)) {
        moves.push_back({from, from + 2});
    }
    if (mayCastle[whiteToMove][0] && isEmpty(from - 1) && isEmpty(from - 2) && isEmpty(from - 3) &&
        !isAttacked(from - 1, !whiteToMove)) {
        moves.push_back({from, from - 2});
    }
}

std::vector<PlainMove> PlainBoard::pseudoLegalMoves() const {
    std::vector<PlainMove> moves;
    for (int from = 0; from < 64; ++from) {
        if (!isOwn(from)) continue;
        const int piece = std::tolower(static_cast<unsigned char>(squares[from]));
        if (piece == 'p') {
            addPawnMoves(from, moves);
            continue;
        }
        if (piece == 'k' && from == (whiteToMove ? 4 : 60)) addCastling(from, moves);
        for (int i = 0; i < 8; ++i) {
            if ((piece == 'b' && i < 4) || (piece == 'r' && i >= 4)) continue;
            const auto& [files, ranks] = piece == 'n' ? jumps[i] : directions[i];
            for (int to = step(from, files, ranks); to >= 0 && !isOwn(to);
                 to = step(to, files, ranks)) {
                moves.push_back({from, to});
                if (piece == 'n' || piece == 'k' || isEnemy(to)) break;
            }
        }
    }
    return moves;
}

void PlainBoard::make(const PlainMove& move) {
    const int piece = std::tolower(static_cast<unsigned char>(squares[move.from]));
    const bool captures = !isEmpty(move.to);
    if (piece == 'p' && move.to == epSquare) squares[move.to + (whiteToMove ? -8 : 8)] = '.';
    if (piece == 'k' && std::abs(move.from - move.to) == 2) {
        const bool kingSide = move.to > move.from;
        const int rook = kingSide ? move.to + 1 : move.to - 2;
        squares[(move.from + move.to) / 2] = squares[rook];
        squares[rook] = '.';
    }
    squares[move.to] = squares[move.from];
    squares[move.from] = '.';
    if (move.promotion != '.') {
        squares[move.to] =
            whiteToMove ? static_cast<char>(std::toupper(move.promotion)) : move.promotion;
    }
    for (const int square : {move.from, move.to}) {
        if (square == 0 || square == 4) mayCastle[1][0] = false;
        if (square == 7 || square == 4) mayCastle[1][1] = false;
        if (square == 56 || square == 60) mayCastle[0][0] = false;
        if (square == 63 || square == 60) mayCastle[0][1] = false;
    }
    epSquare = piece == 'p' && std::abs(move.from - move.to) == 16 ? (move.from + move.to) / 2 : -1;
    clock = piece == 'p' || captures ? 0 : clock + 1;
    whiteToMove = !whiteToMove;
}

std::vector<PlainMove> PlainBoard::legalMoves() const {
    std::vector<PlainMove> legal;
    for (const PlainMove& move : pseudoLegalMoves()) {
        PlainBoard after = *this;
        after.make(move);
        int king = 0;
        while (after.squares[king] != (whiteToMove ? 'K' : 'k')) {
            ++king;
        }
        if (!after.isAttacked(king, !whiteToMove)) legal.push_back(move);
    }
    return legal;
}

struct PlainStats {
    std::uint64_t presence[128][64] = {};  // by letter
    std::uint64_t pieceCount[2][17] = {};
    std::uint64_t positions = 0;
};

bool isDrawn(const std::vector<PlainBoard>& line) {
    const PlainBoard& now = line.back();
    if (now.clock > 99) return true;
    int pieces = 0;
    bool enough = false;
    for (const char piece : now.squares) {
        if (piece == '.') continue;
        ++pieces;
        const int type = std::tolower(static_cast<unsigned char>(piece));
        enough = enough || type == 'p' || type == 'r' || type == 'q';
    }
    if (pieces <= 3 && !enough) return true;
    for (std::size_t back = 4; back <= static_cast<std::size_t>(now.clock) && back < line.size();
         back += 2) {
        if (line[line.size() - 1 - back] == now) return true;
    }
    return false;
}

void playPlainGame(PlainStats& stats, vatro::Random& random) {
    std::vector<PlainBoard> line(1);
    while (line.size() < 1024) {
        const std::vector<PlainMove> moves = line.back().legalMoves();
        if (moves.empty()) return;
        const auto draw = random.below(static_cast<unsigned>(moves.size()));
        line.push_back(line.back());
        PlainBoard& board = line.back();
        board.make(moves[draw]);
        ++stats.positions;
        int counts[2] = {};
        for (int square = 0; square < 64; ++square) {
            if (board.isEmpty(square)) continue;
            ++counts[board.isWhite(square)];
            ++stats.presence[static_cast<unsigned char>(board.squares[square])][square];
        }
        ++stats.pieceCount[0][counts[0]];
        ++stats.pieceCount[1][counts[1]];
        if (isDrawn(line)) return;
    }
}

void plainBoard(benchmark::State& state) {
    vatro::Random random(1);
    const auto stats = std::make_unique<PlainStats>();
    while (state.KeepRunning()) {
        playPlainGame(*stats, random);
    }
    state.SetItemsProcessed(state.iterations());  // games
    state.counters["plies"] =
        static_cast<double>(stats->positions) / static_cast<double>(state.iterations());
}
BENCHMARK(plainBoard)->Iterations(1000)->Unit(benchmark::kMicrosecond);

/// Prints its statistics; the report goes to standard error (or, with --benchmark_out, to a file).
void randomGames(benchmark::State& state) {
    vatro::Random random(1);
    const auto game = std::make_unique<vatro::Game>();
    vatro::StopCheck never;
    while (state.KeepRunning()) {
        vatro::playRandomGames(*game, static_cast<unsigned long>(state.range(0)), random, never);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(randomGames)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
