// tests/book/book_move_test.cpp - what the moves of a book mean on the board.
#include "book/book_move.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "board/move_generation.h"
#include "book_file.h"

namespace vatro {
namespace {

std::set<Move> legalMoveWords(const Board_0x88& board) {
    MoveList list;
    generateLegalMoves(board, list);
    std::set<Move> moves;
    for (const ScoredMove& entry : list)
        moves.insert(entry.move());
    return moves;
}

TEST(BookMove, EveryWordIsALegalMoveOrNone) {
    const char* positions[] = {
        startPositionFEN,
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
        "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R b KQkq - 0 1",
        "n1n1k3/PPPP4/8/8/8/8/4pppp/4K1N1 w - - 0 1",  // promotions of both sides
        "n1n1k3/PPPP4/8/8/8/8/4ppp1/4K1N1 b - - 0 1",
        "8/8/8/1Ppp3r/KR3p1k/8/4P1P1/8 w - c6 0 1",   // en passant
        "8/8/3p4/KPp4r/1R3p1k/8/4P1P1/8 w - c6 0 1",  // en passant opens the rank
        "4k3/8/8/8/3pPp2/8/8/4K3 b - e3 0 1",         // two captors
        "r3k2r/8/8/8/8/8/8/R3K2R w Kq - 0 1",         // half of the rights
        "r3k2r/8/8/8/4r3/8/8/R3K2R w KQkq - 0 1",     // in check
        "r3k2r/8/8/5R2/8/8/8/4K3 b kq - 0 1",         // through an attacked square
        "k7/8/8/8/8/8/8/8 w - - 0 1",                 // nothing to move
        "8/8/8/8/8/8/8/8 w - -",
    };
    for (const char* fen : positions) {
        SCOPED_TRACE(fen);
        const Board_0x88 board = *boardOf(fen);
        const std::set<Move> legal = legalMoveWords(board);
        std::set<Move> reached;
        for (unsigned word = 0; word <= 0xFFFF; ++word) {
            const Move move = fromBookMove(board, static_cast<std::uint16_t>(word));
            if (move != NoMove) reached.insert(move);
        }
        EXPECT_EQ(reached, legal);
    }
}

TEST(BookMove, IsReadAsTheFormatWritesIt) {
    const char* castling = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq - 0 1";
    const char* blackCastling = "r3k2r/8/8/8/8/8/8/R3K2R b KQkq - 0 1";
    const struct {
        const char* fen;
        const char* move;
        Move word;
    } cases[] = {
        // Castling captures the own rook; the king's move of two squares is accepted too.
        {castling, "e1h1", 0x2184},
        {castling, "e1g1", 0x2184},
        {castling, "e1a1", 0x6084},
        {castling, "e1c1", 0x6084},
        {blackCastling, "e8h8", 0xAFBC},
        {blackCastling, "e8g8", 0xAFBC},
        {blackCastling, "e8a8", 0xEEBC},
        {blackCastling, "e8c8", 0xEEBC},
        // Other moves between these squares, and castling that the position forbids.
        {"4k3/8/8/8/8/8/8/4R2r w - - 0 1", "e1h1", makeMoveWord(E1, H1)},
        {"4k3/8/8/8/8/8/6K1/4q2R b - - 0 1", "e1h1", makeMoveWord(E1, H1)},
        {"4k3/8/8/8/8/8/8/4K2R w - - 0 1", "e1h1", NoMove},
        {"4k3/8/8/8/8/8/8/R3K3 w - - 0 1", "e1c1", NoMove},
        {castling, "e8h8", NoMove},
        // Promotions: a piece for every code, and only for a pawn that promotes.
        {"3r4/4P3/8/8/8/8/8/K1k5 w - - 0 1", "e7e8n", makePromotion(E7, E8, Knight)},
        {"3r4/4P3/8/8/8/8/8/K1k5 w - - 0 1", "e7d8b", makePromotion(E7, D8, Bishop)},
        {"K1k5/8/8/8/8/8/4p3/8 b - - 0 1", "e2e1r", makePromotion(E2, E1, Rook)},
        {"K1k5/8/8/8/8/8/4p3/3R4 b - - 0 1", "e2d1q", makePromotion(E2, D1, Queen)},
        {"3r4/4P3/8/8/8/8/8/K1k5 w - - 0 1", "e7e8", NoMove},
        {"3r4/4R3/8/8/8/8/8/K1k5 w - - 0 1", "e7e8q", NoMove},
        {castling, "e1h1q", NoMove},
        // A double step can be captured, a single one cannot.
        {startPositionFEN, "e2e4", makeMoveWord(E2, E4, Normal, DoubleStep)},
        {startPositionFEN, "e2e3", makeMoveWord(E2, E3)},
        {"4k3/4p3/8/8/8/8/8/4K3 b - - 0 1", "e7e5", makeMoveWord(E7, E5, Normal, DoubleStep)},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - d6 0 1", "e5d6", makeMoveWord(E5, D6, EnPassant)},
        {"4k3/8/8/8/3pP3/8/8/4K3 b - e3 0 1", "d4e3", makeMoveWord(D4, E3, EnPassant)},
        {"4k3/8/8/3pP3/8/8/8/4K3 w - - 0 1", "e5d6", NoMove},
    };
    for (const auto& [fen, move, word] : cases) {
        SCOPED_TRACE(std::string(fen) + " " + move);
        EXPECT_EQ(fromBookMove(*boardOf(fen), test::bookMove(move)), word);
    }
}

}  // namespace
}  // namespace vatro
