// src/board/move.cpp - moves as text.
#include "board/move.h"

namespace vatro {

std::string moveToText(Move move) {
    std::string text;
    for (const int square : {from64(move), to64(move)}) {
        text += static_cast<char>('a' + fileOf64(square));
        text += static_cast<char>('1' + rankOf64(square));
    }
    if (isPromotion(move)) text += pieceLetters[promotionPiece(move)];
    return text;
}

}  // namespace vatro
