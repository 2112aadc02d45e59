// board/attacks.cpp - attack questions asked outside the hot path.
#include "board/attacks.h"

namespace vatro {

bool isAttacked(const Board_0x88& board, Square square, Colour byColour) {
    const Square64 sq64 = as64(square);
    return byColour == White ? attackersOf<White>(board, sq64, board.occupied()) != 0
                             : attackersOf<Black>(board, sq64, board.occupied()) != 0;
}

bool inCheck(const Board_0x88& board) {
    return board.sideToMove == White ? findCheckers<White>(board) != 0
                                     : findCheckers<Black>(board) != 0;
}

PinInfo computePins(const Board_0x88& board) {
    return board.sideToMove == White ? computePins<White>(board, findCheckers<White>(board))
                                     : computePins<Black>(board, findCheckers<Black>(board));
}

}  // namespace vatro
