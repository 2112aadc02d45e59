// tests/eval/piece_terms_test.cpp - mobility against walks over the mailbox; shelter, tropism.
#include "eval/piece_terms.h"

#include <cstdlib>
#include <span>

#include <gtest/gtest.h>

#include "eval/king_safety.h"
#include "eval/tropism.h"
#include "tests/eval/eval_support.h"

namespace vatro {
namespace {

/// Squares that a piece can go to, checks and pins aside.
int walk(const Board_0x88& board, Square from, std::span<const int> offsets, bool slides) {
    int count = 0;
    for (const int offset : offsets) {
        for (Square to = from + offset; isOnBoard(to); to += offset) {
            if (board.colourOn[to] == board.colourOn[from]) break;
            ++count;
            if (board.pieceOn[to] != NoPiece || !slides) break;
        }
    }
    return count;
}

template <Colour Us, PieceType Type>
void expectWalkedMobility(const Board_0x88& board) {
    ScoreSum expected;
    for (const Square square : board.pieceLists[Us].squares) {
        if (square == NoSquare || board.pieceOn[square] != Type) continue;
        int count = 0;
        if (Type == Knight) count = walk(board, square, knightOffsets, false);
        if (Type == Bishop || Type == Queen) count += walk(board, square, diagonalDirections, true);
        if (Type == Rook || Type == Queen) count += walk(board, square, orthogonalDirections, true);
        expected += mobilityTerms[Type][count];
    }
    ScoreSum tropism;
    const ScoreSum found = mobility<Us, Type>(board, tropismTowards(board, ~Us), tropism);
    EXPECT_EQ(pairOf(found), pairOf(expected)) << board.toFEN() << ' ' << pieceLetters[Type];
}

template <Colour Us>
void expectWalkedMobilities(const Board_0x88& board) {
    expectWalkedMobility<Us, Knight>(board);
    expectWalkedMobility<Us, Bishop>(board);
    expectWalkedMobility<Us, Rook>(board);
    expectWalkedMobility<Us, Queen>(board);
}

TEST(Mobility, CountsTheSquaresOfAWalk) {
    TestRandom random(5);
    for (const char* start : richPositions) {
        forEachRandomPosition(start, 150, random, [](const Board_0x88& board) {
            expectWalkedMobilities<White>(board);
            expectWalkedMobilities<Black>(board);
        });
    }
}

TEST(Mobility, TermsOfTheStartPosition) {
    Evaluator evaluate;
    EvalBreakdown terms;
    evaluateWithBreakdown(*boardOf(startPositionFEN), evaluate.memory, terms);
    const std::pair<EvalRow, ScorePair> rows[] = {{EvalRow::Knights, {16, 32}},
                                                  {EvalRow::Bishops, {-20, -40}},
                                                  {EvalRow::Rooks, {-30, -60}},
                                                  {EvalRow::Queens, {-30, -60}}};
    for (const auto& [row, expected] : rows) {
        EXPECT_EQ(terms.terms[static_cast<int>(row)][White], expected);
        EXPECT_EQ(terms.terms[static_cast<int>(row)][Black], expected);
    }
}

constexpr unsigned fileSet(std::string_view files) {
    unsigned set = 0;
    for (const char file : files)
        set |= 1U << (file - 'a');
    return set;
}
PawnStructure structureOf(std::string_view open, std::string_view halfOpen) {
    return {{0, 0},
            {},
            static_cast<std::uint8_t>(fileSet(open)),
            static_cast<std::uint8_t>(fileSet(halfOpen))};
}

TEST(Files, RooksAndQueensOnOpenFiles) {
    const auto board = boardOf("4k3/8/8/8/8/8/8/4RQK1 w - - 0 1");  // the rook faces the king
    const unsigned kingFile = fileSet("e");
    const auto rook = [&](std::string_view open, std::string_view half) {
        return pairOf(rookFileTerms<White>(*board, structureOf(open, half), kingFile));
    };
    const auto queen = [&](std::string_view open) {
        return pairOf(queenFileTerms<White>(*board, structureOf(open, "d"), kingFile));
    };
    EXPECT_EQ(rook("aeh", ""), Pair(169, 45));
    EXPECT_EQ(rook("ah", "e"), Pair(44, 2));
    EXPECT_EQ(rook("ah", "d"), Pair(0, 0));
    EXPECT_EQ(queen("f"), Pair(7, 39));
    EXPECT_EQ(queen("e"), Pair(0, 0));
    // The edge files have one neighbour each: the other edge is not next to them.
    EXPECT_EQ(pairOf(rookFileTerms<White>(*boardOf("k7/8/8/8/8/8/8/4K2R w - - 0 1"),
                                          structureOf("h", ""), fileSet("a"))),
              Pair(68, 42));
}

TEST(KingSafety, GapsInTheShelter) {
    const std::pair<const char*, int> cases[] = {
        {"4k3/8/8/8/8/8/5PPP/6K1 w - - 0 1", 0}, {"4k3/8/8/8/8/8/5PP1/6K1 w - - 0 1", 1},
        {"4k3/8/8/8/8/8/5P1P/6K1 w - - 0 1", 0}, {"4k3/8/8/8/8/5P2/7P/6K1 w - - 0 1", 0},
        {"4k3/8/8/8/8/7P/5P2/6K1 w - - 0 1", 1}, {"4k3/8/8/8/8/8/P7/6K1 w - - 0 1", 2},
        {"4k3/8/8/8/8/8/6P1/K7 w - - 0 1", 1},   {"4k3/8/8/8/8/8/1P6/K7 w - - 0 1", 0},
        {"4k3/8/8/8/8/8/6P1/7K w - - 0 1", 0},   {"4k3/8/8/8/8/8/P7/7K w - - 0 1", 1},
        {"4k3/8/4K3/8/8/8/P7/8 w - - 0 1", 1},   {"8/4K3/8/8/4k3/8/P7/8 w - - 0 1", 0},
    };
    for (const auto& [fen, gaps] : cases) {
        const Pair expected(-15 * gaps, 7 * gaps);
        EXPECT_EQ(pairOf(kingSafetyTerms<White>(*boardOf(fen), 0)), expected) << fen;
        const auto mirrored = boardOf(mirroredFEN(fen));
        EXPECT_EQ(pairOf(kingSafetyTerms<Black>(*mirrored, 0)), expected) << fen;
    }
}

TEST(KingSafety, OpenFilesCountByHeavyPieces) {
    const unsigned open = fileSet("aef");
    const auto terms = [&](const char* fen) {
        return pairOf(kingSafetyTerms<White>(*boardOf(fen), open));
    };
    const Pair shelter(-30, 14);
    EXPECT_EQ(terms("rr2k3/3q4/8/8/8/8/7P/4K3 w - - 0 1"),
              Pair(shelter.first - 70 - 16, shelter.second - 18 - 22));
    EXPECT_EQ(terms("4k3/3q4/8/8/8/8/7P/4K3 w - - 0 1"),
              Pair(shelter.first - 35 - 8, shelter.second - 9 - 11));
    EXPECT_EQ(terms("nnbbk3/8/8/8/8/8/7P/4K3 w - - 0 1"), shelter);
}

// Away from the edges the table must give what the pieces attack on an empty board.
TEST(Tropism, CountsAttackedSquaresAroundAKing) {
    for (const Square64 king : allSquares) {
        if (rankOf(king) % 7 == 0 || fileOf(king) % 7 == 0) continue;
        const SquareMask zone = kingAttacks[king];
        const KingTropism& tropism = kingTropism[king];
        for (const Square64 from : allSquares) {
            if (from == king) continue;
            SCOPED_TRACE(squareText(king) + ' ' + squareText(from));
            const SquareMask near = zone & kingAttacks[from];
            const SquareMask diagonals = bishopRays[from];
            const SquareMask lines = rookRays[from];
            const auto slider = [&](SquareMask rays, SquareMask steps) {
                return (zone & rays) ? 1 + countSquares(near & steps) : 0;
            };
            const std::pair<PieceType, int> attacked[] = {
                {Knight, countSquares(zone & knightAttacks[from])},
                {Bishop, slider(diagonals, diagonals)},
                {Rook, slider(lines, lines)},
                {Queen, slider(diagonals | lines, ~SquareMask{0})},
                {King, countSquares(near)}};
            for (const auto& [type, count] : attacked) {
                EXPECT_EQ(pairOf(tropism.term(type, from)), pairOf(count * tropismWeight[type]));
            }
        }
    }
}

TEST(Tropism, PawnsUpToTheKingsRank) {
    const auto pawnTerm = [](const char* fen) {
        const auto board = boardOf(fen);
        return pairOf(
            pawnTropism<White>(board->pieceMask[White][Pawn], tropismTowards(*board, Black)));
    };
    EXPECT_EQ(pawnTerm("8/8/4P3/4k3/8/8/8/4K3 w - - 0 1"), Pair(0, 0));
    EXPECT_EQ(pawnTerm("8/8/8/4k3/8/4P3/8/4K3 w - - 0 1"), Pair(20, -8));
    EXPECT_EQ(pawnTerm("8/8/8/4k3/8/6P1/8/4K3 w - - 0 1"), Pair(10, -4));
    EXPECT_EQ(pawnTerm("8/8/8/4k3/8/8/4P3/4K3 w - - 0 1"), Pair(0, 0));
    // Two kings on a file with one square between them share three squares.
    EXPECT_EQ(pairOf(kingTropism[as64(E4)].term(King, as64(E6))), Pair(3 * 18, 3 * 14));
    EXPECT_EQ(pairOf(kingTropism[as64(E6)].term(King, as64(E4))), Pair(3 * 18, 3 * 14));
}

}  // namespace
}  // namespace vatro
