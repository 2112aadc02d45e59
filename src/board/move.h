// board/move.h - the 16-bit move word that the game, the tables and the search store.
//
// Bits 0-5 from, 6-11 to (both Square64), 12-13 the type, 14-15 depend on the type: the promotion
// piece minus 2, which castling it is (0 white king side ... 3 black queen side), or 1 for a
// pawn's double step.
#pragma once

#include <cstdint>
#include <string>

#include "board/types.h"

namespace vatro {

using Move = std::uint16_t;

/// No move; a null move where a record says which move was played.
constexpr Move NoMove = 0;

enum MoveType : std::uint8_t { Normal, Promotion, Castling, EnPassant };

constexpr unsigned DoubleStep = 1;  // bits 14-15 of a Normal move

constexpr Move makeMoveWord(Square64 from,
                            Square64 to,
                            MoveType type = Normal,
                            unsigned extra = 0) {
    return static_cast<Move>(from | (to << 6) | (type << 12) | (extra << 14));
}
constexpr Move makeMoveWord(Square from, Square to, MoveType type = Normal, unsigned extra = 0) {
    return makeMoveWord(as64(from), as64(to), type, extra);
}
constexpr Move makePromotion(Square64 from, Square64 to, PieceType piece) {
    return makeMoveWord(from, to, Promotion, piece - Knight);
}
constexpr Move makePromotion(Square from, Square to, PieceType piece) {
    return makePromotion(as64(from), as64(to), piece);
}

constexpr Square64 from64(Move move) { return static_cast<Square64>(move & 63); }
constexpr Square64 to64(Move move) { return static_cast<Square64>((move >> 6) & 63); }
constexpr Square fromSquare(Move move) { return as88(from64(move)); }
constexpr Square toSquare(Move move) { return as88(to64(move)); }
constexpr MoveType typeOf(Move move) { return static_cast<MoveType>((move >> 12) & 3); }
constexpr unsigned extraOf(Move move) { return move >> 14; }
/// The piece a Promotion promotes to.
constexpr PieceType promotionPiece(Move move) {
    return static_cast<PieceType>(extraOf(move) + Knight);
}
constexpr bool isPromotion(Move move) { return typeOf(move) == Promotion; }

/// True when the squares are the same and the promotion piece, if any; other flags are ignored.
constexpr bool sameMove(Move a, Move b) {
    if ((a ^ b) & 0xFFF) return false;
    if (isPromotion(a) != isPromotion(b)) return false;
    return !isPromotion(a) || extraOf(a) == extraOf(b);
}

/// "e4".
std::string squareText(Square64 square);

/// Coordinate notation: e2e4, e7e8q; castling as the king's move.
std::string moveToText(Move move);

/// What makeMove saves for unmakeMove.
struct UndoRecord {
    std::uint8_t castlingRights = 0;
    Square epSquare = NoSquare;
    std::uint8_t halfmoveClock = 0;
    /// (type << 4) | (slot & 15) of the captured piece, 0 when nothing was captured.
    std::uint8_t captured = 0;
};
static_assert(sizeof(UndoRecord) == 4);

/// A move and its ordering score. One word, as they are stored and soon loaded together: a load
/// that takes in two stores has to wait until both have reached the cache.
class ScoredMove {
  public:
    ScoredMove() = default;
    /// The score has to fit in 16 bits.
    constexpr ScoredMove(Move move, int score) : word(score * 65536 + move) {}

    constexpr Move move() const { return static_cast<Move>(word); }
    constexpr int score() const { return word >> 16; }

  private:
    std::int32_t word;
};

/// Moves with their ordering scores. A full list drops further moves silently.
struct MoveList {
    static constexpr unsigned Capacity = 255;

    ScoredMove moves[Capacity];
    unsigned count = 0;

    void add(Move move, int score = 0) {
        if (count < Capacity) moves[count++] = {move, score};
    }
    const ScoredMove* begin() const { return moves; }
    const ScoredMove* end() const { return moves + count; }
};

}  // namespace vatro
