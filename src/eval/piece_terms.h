// eval/piece_terms.h - mobility, rooks and queens on open files, and every piece's tropism.
#pragma once

#include <array>

#include "board/board.h"
#include "board/geometry.h"
#include "board/score_sum.h"
#include "board/side.h"
#include "board/sliding_attacks.h"
#include "eval/breakdown.h"
#include "eval/pawn_hash.h"
#include "eval/pawn_masks.h"
#include "eval/tropism.h"

namespace vatro {

constexpr int MobilityCount = 28;  // a queen reaches at most 27 squares
/// By piece type and number of squares the piece can go to.
extern const std::array<std::array<ScoreSum, MobilityCount>, PieceTypeCount> mobilityTerms;

constexpr int FileCountSize = 9;  // 0 to 8 files
/// A rook on an open file, by the number of open files.
extern const std::array<ScoreSum, FileCountSize> rookOpenFileBonus;
/// A rook on a half-open file, by the number of open and half-open files.
extern const std::array<ScoreSum, FileCountSize> rookHalfOpenFileBonus;

// A piece on an open file that is the enemy king's or next to it. Tuned; no derivation.
constexpr ScoreSum rookOnKingFile{83, 36};
constexpr ScoreSum rookBesideKingFile{54, -21};
constexpr ScoreSum queenOnKingFile{16, 111};
constexpr ScoreSum queenBesideKingFile{7, 39};

template <PieceType Type>
SquareMask attacksFrom(Square64 square, SquareMask occupied) {
    static_assert(Type == Knight || Type == Bishop || Type == Rook || Type == Queen);
    if constexpr (Type == Knight) return knightAttacks[square];
    if constexpr (Type == Bishop) return bishopAttacks(square, occupied);
    if constexpr (Type == Rook) return rookAttacks(square, occupied);
    return bishopAttacks(square, occupied) | rookAttacks(square, occupied);
}

/// The mobility of all pieces of a type; their tropism is added to `tropism`.
template <Colour Us, PieceType Type>
ScoreSum mobility(const Board_0x88& board, const KingTropism& towards, ScoreSum& tropism) {
    const SquareMask occupied = board.occupied();
    const SquareMask targets = ~board.pieceMask[Us][NoPiece];
    ScoreSum score;
    for (SquareMask pieces = board.pieceMask[Us][Type]; pieces; pieces &= pieces - 1) {
        const Square64 square = lowestSquare(pieces);
        score += mobilityTerms[Type][countSquares(attacksFrom<Type>(square, occupied) & targets)];
        tropism += towards.term(Type, square);
    }
    return score;
}

template <Colour Us>
ScoreSum rookFileTerms(const Board_0x88& board, const PawnStructure& pawns, unsigned kingFile) {
    const SquareMask rooks = board.pieceMask[Us][Rook];
    const unsigned open = pawns.openFiles;
    const unsigned halfOpen = pawns.halfOpenFiles;
    const auto rooksOn = [&](unsigned files) {
        return countSquares(rooks & squaresOnFiles(files));
    };
    return rooksOn(open) * rookOpenFileBonus[countSquares(open)] +
           rooksOn(halfOpen) * rookHalfOpenFileBonus[countSquares(open | halfOpen)] +
           rooksOn(open & kingFile) * rookOnKingFile +
           rooksOn(open & filesBeside(kingFile)) * rookBesideKingFile;
}

template <Colour Us>
ScoreSum queenFileTerms(const Board_0x88& board, const PawnStructure& pawns, unsigned kingFile) {
    const SquareMask queens = board.pieceMask[Us][Queen];
    const unsigned open = pawns.openFiles;
    if (!(queens & squaresOnFiles(open))) return {};
    const auto queensOn = [&](unsigned files) {
        return countSquares(queens & squaresOnFiles(files));
    };
    return queensOn(open & kingFile) * queenOnKingFile +
           queensOn(open & filesBeside(kingFile)) * queenBesideKingFile;
}

/// All terms of the pieces of a colour, pawns' and king's tropism included.
template <Colour Us, typename Breakdown>
ScoreSum pieceTerms(const Board_0x88& board, const PawnStructure& pawns, Breakdown& breakdown) {
    constexpr Colour Them = Side<Us>::Them;
    const KingTropism& towards = tropismTowards(board, Them);
    const unsigned kingFile = filesOf(board.pieceMask[Them][King]);  // none without a king

    ScoreSum tropism = pawnTropism<Us>(board.pieceMask[Us][Pawn], towards);
    if (board.hasKing(Us)) {
        tropism += towards.term(King, as64(board.kingSquare(Us)));
    }
    const ScoreSum knights = mobility<Us, Knight>(board, towards, tropism);
    const ScoreSum bishops = mobility<Us, Bishop>(board, towards, tropism);
    const ScoreSum rooks =
        mobility<Us, Rook>(board, towards, tropism) + rookFileTerms<Us>(board, pawns, kingFile);
    const ScoreSum queens =
        mobility<Us, Queen>(board, towards, tropism) + queenFileTerms<Us>(board, pawns, kingFile);

    breakdown.add(EvalRow::Knights, Us, knights);
    breakdown.add(EvalRow::Bishops, Us, bishops);
    breakdown.add(EvalRow::Rooks, Us, rooks);
    breakdown.add(EvalRow::Queens, Us, queens);
    breakdown.add(EvalRow::KingTropism, Us, tropism);
    return knights + bishops + rooks + queens + tropism;
}

}  // namespace vatro
