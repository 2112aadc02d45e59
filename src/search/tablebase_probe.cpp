// search/tablebase_probe.cpp - asking the tablebases for the position on the board.
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
        squares[count] = static_cast<std::uint8_t>(as64(square));
        types[count] = board.pieceOn[square];
        ++count;
    }
    squares[count] = TablebaseState::EndOfList;
    types[count] = NoPiece;
}

}  // namespace

template <Colour Us>
[[gnu::noinline]] std::optional<int> Searcher::probeTablebases(bool mayReadDisk) {
    if (board.castlingRights || !context.tablebases.initialised()) return std::nullopt;
    TablebaseState::Query query;
    query.sideToMove = Us;
    query.epSquare = board.epSquare == NoSquare ? TablebaseState::NoEpSquare : as64(board.epSquare);
    listPieces(board, White, query.whiteSquares, query.whiteTypes);
    listPieces(board, Black, query.blackSquares, query.blackTypes);
    TablebaseState::Outcome outcome;
    unsigned plies;
    bool hasReadDisk;
    const bool found = context.tablebases.probe(query, mayReadDisk, outcome, plies, &hasReadDisk);
    // The disk may have taken as long as many thousand nodes.
    if (hasReadDisk) lookAtClock();
    if (!found) return std::nullopt;
    if (outcome == TablebaseState::Unknown) return std::nullopt;
    tbHits.store(tbHits.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    if (outcome == TablebaseState::Draw) return DrawScore;
    const int winnersScore = MateScore - static_cast<int>(plies);
    const bool wins =
        outcome == (Us == White ? TablebaseState::WhiteMates : TablebaseState::BlackMates);
    return wins ? winnersScore : -winnersScore;
}

template std::optional<int> Searcher::probeTablebases<White>(bool);
template std::optional<int> Searcher::probeTablebases<Black>(bool);

}  // namespace vatro
