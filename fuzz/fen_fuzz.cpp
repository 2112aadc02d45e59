// fuzz/fen_fuzz.cpp - arbitrary bytes as a FEN; what is accepted is played on.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "board/board.h"
#include "board/make_move.h"
#include "board/move_generation.h"

using namespace vatro;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

/// Makes and unmakes every legal move, `depth` deep along the first few of them.
void playAll(Board_0x88& board, int depth) {
    MoveList list;
    generateLegalMoves(board, list);
    require(countLegalMoves(board) == list.count);
    const std::string before = board.toFEN();
    unsigned index = 0;
    for (const ScoredMove& entry : list) {
        UndoRecord undo;
        makeMove(board, entry.move(), undo);
        require(isConsistent(board));
        if (depth > 1 && index++ < 3) playAll(board, depth - 1);
        unmakeMove(board, entry.move(), undo);
    }
    require(isConsistent(board) && board.toFEN() == before);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Board_0x88 board;
    static Board_0x88 copy;
    const std::string fen(reinterpret_cast<const char*>(data), size);
    if (!board.setupFromFEN(fen.c_str())) return 0;
    require(isConsistent(board));
    const std::string text = board.toFEN();
    require(copy.setupFromFEN(text.c_str()) && copy.toFEN() == text);
    require(copy.record().key == board.record().key);
    playAll(board, 3);
    return 0;
}
