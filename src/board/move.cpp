// board/move.cpp - moves as text.
#include "board/move.h"

namespace vatro {

std::string squareText(Square64 square) {
    return {static_cast<char>('a' + fileOf(square)), static_cast<char>('1' + rankOf(square))};
}

std::string moveToText(Move move) {
    std::string text = squareText(from64(move)) + squareText(to64(move));
    if (isPromotion(move)) text += pieceLetters[promotionPiece(move)];
    return text;
}

}  // namespace vatro
