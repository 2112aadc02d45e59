// eval/endgame_rules.cpp - endings of four pieces that are hard or impossible to win.
#include "eval/endgame_rules.h"

#include <algorithm>
#include <initializer_list>

#include "board/geometry.h"
#include "board/side.h"
#include "board/types.h"

namespace vatro {
namespace {

/// Whether a side has its king and the pieces named, and nothing else.
bool hasOnly(const Board_0x88& board, Colour colour, std::initializer_list<PieceType> pieces) {
    for (const PieceType piece : pieces) {
        if (board.count(colour, piece) != 1) return false;
    }
    return board.hasKing(colour) && board.totalCount(colour) == static_cast<int>(pieces.size()) + 1;
}

// Percentages. Tuned; no derivation.
constexpr int RookAgainstBishop = 25;
constexpr int RookAgainstKnight = 12;
constexpr int WrongBishop = 50;      // the defending king is not yet in the corner
constexpr int WrongBishopDrawn = 0;  // it is
constexpr int QueenAgainstFarPawn = 25;

constexpr SquareMask squares(std::initializer_list<Square> list) {
    SquareMask mask = 0;
    for (const Square square : list) {
        mask |= maskOf(square);
    }
    return mask;
}

// From these squares the king helps its pawn, which is about to promote on rank 1.
constexpr SquareMask helpsRookPawn = squares({A1, B1, B2});
constexpr SquareMask helpsBishopPawn = squares({B1, C1, D1, B2, D2});

/// King, bishop and rook pawn against king: drawn when the bishop does not cover the corner.
template <Colour Us>
int bishopAndPawnScale(const Board_0x88& board) {
    constexpr Colour Them = Side<Us>::Them;
    const int file = fileOf(lowestSquare(board.pieceMask[Us][Pawn]));
    if (file != 0 && file != 7) return FullScale;
    const Square64 corner = as64(Side<Them>::home(squareAt(file, 0)));
    // Found by its mask, since a promoted bishop may stand behind the pawn in the piece list.
    const Square64 bishop = lowestSquare(board.pieceMask[Us][Bishop]);
    if (squareColour(bishop) == squareColour(corner)) return FullScale;
    const int distance = kingDistance(as64(board.kingSquare(Them)), corner);
    return distance <= 1 ? WrongBishopDrawn : WrongBishop;
}

/// Queen against a pawn of `Us`: hard when it is a rook or bishop pawn one step from promotion.
template <Colour Us>
int queenAgainstPawnScale(const Board_0x88& board) {
    // Turned so that the pawn promotes on rank 1, on one of the files a to d.
    const Square64 pawnSquare = lowestSquare(board.pieceMask[Us][Pawn]);
    const bool onKingSide = fileOf(pawnSquare) > 3;
    const auto turned = [onKingSide](Square64 square) {
        if (Us == White) square = mirrorRanks(square);
        return onKingSide ? mirrorFiles(square) : square;
    };
    const Square64 pawn = turned(pawnSquare);
    const SquareMask king = maskOf(turned(as64(board.kingSquare(Us))));
    const bool helped = (pawn == as64(A2) && (king & helpsRookPawn)) ||
                        (pawn == as64(C2) && (king & helpsBishopPawn));
    return helped ? QueenAgainstFarPawn : FullScale;
}

/// The rule for `Us` as the stronger side.
template <Colour Us>
int ruleFor(const Board_0x88& board) {
    constexpr Colour Them = Side<Us>::Them;
    if (hasOnly(board, Us, {Rook})) {
        if (hasOnly(board, Them, {Bishop})) return RookAgainstBishop;
        if (hasOnly(board, Them, {Knight})) return RookAgainstKnight;
    }
    if (hasOnly(board, Us, {Bishop, Pawn}) && hasOnly(board, Them, {})) {
        return bishopAndPawnScale<Us>(board);
    }
    if (hasOnly(board, Us, {Queen}) && hasOnly(board, Them, {Pawn})) {
        return queenAgainstPawnScale<Them>(board);
    }
    return FullScale;
}

}  // namespace

int endgameRule(const Board_0x88& board) {
    if (board.totalCount() != EndgamePieces) return FullScale;
    // At most one rule applies, and to one side.
    return std::min(ruleFor<White>(board), ruleFor<Black>(board));
}

}  // namespace vatro
