// src/search/tablebase_probe.cpp - asking the tablebases for the position on the board.
#include "search/node.h"

namespace vatro {
namespace {

void listPieces(const Board_0x88& board,
                Colour colour,
                std::array<std::uint8_t, 6>& squares,
                std::array<std::uint8_t, 6>& types) {
    unsigned count = 0;
    for (const Square square : board.pieceLists[colour].squares) {
        if (square == NoSquare) continue;
        squares[count] = static_cast<std::uint8_t>(toSq64(square));
        types[count] = board.pieceOn[square];
        ++count;
    }
    squares[count] = TablebaseState::NoSquare64;
    types[count] = NoPiece;
}

}  // namespace

template <Colour Us>
[[gnu::noinline]] bool Searcher::probeTablebases(bool mayReadDisk, int& score) {
    if (board.castlingRights || !context.tablebases.initialised()) return false;
    TablebaseState::Query query;
    query.sideToMove = Us;
    query.epSquare =
        board.epSquare == NoSquare ? TablebaseState::NoSquare64 : toSq64(board.epSquare);
    listPieces(board, White, query.whiteSquares, query.whiteTypes);
    listPieces(board, Black, query.blackSquares, query.blackTypes);
    TablebaseState::Outcome outcome;
    unsigned plies;
    if (!context.tablebases.probe(query, mayReadDisk, outcome, plies)) return false;
    const int distance = static_cast<int>(plies);
    switch (outcome) {
        case TablebaseState::Draw:
            score = DrawScore;
            break;
        case TablebaseState::WhiteMates:
            score = Us == White ? MateScore - distance : distance - MateScore;
            break;
        case TablebaseState::BlackMates:
            score = Us == Black ? MateScore - distance : distance - MateScore;
            break;
        default:
            return false;
    }
    ++statistics.tbHits;
    return true;
}

template bool Searcher::probeTablebases<White>(bool, int&);
template bool Searcher::probeTablebases<Black>(bool, int&);

}  // namespace vatro
