// src/board/move_picker.cpp - what the picker says when a table move does not fit.
#include "board/move_picker.h"

#include "board/console.h"

namespace vatro {

void reportHashCollision(Move move) {
    const std::string text = moveToText(move);
    say(formatted("# hash collision: %5s %s\n", text.c_str(), text.c_str()));
}

}  // namespace vatro
