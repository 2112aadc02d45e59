// board/game.cpp - playing moves into the record and taking them back.
#include "board/game.h"

#include <cassert>

#include "board/make_move.h"

namespace vatro {

bool Game::setup(const char* fen) {
    plyCount = 0;
    return board.setupFromFEN(fen);
}

void Game::play(Move move) {
    assert(!isFull());
    moveList[plyCount] = move;
    board.record().movePlayed = move;
    makeMove(board, move, undoList[plyCount]);
    ++plyCount;
}

void Game::takeBack() {
    assert(plyCount > 0);
    --plyCount;
    unmakeMove(board, moveList[plyCount], undoList[plyCount]);
}

Move pickRandomMove(const MoveList& legalMoves, Random& random) {
    if (legalMoves.count == 0) return NoMove;
    return legalMoves.moves[random.below(legalMoves.count)].move();
}

}  // namespace vatro
