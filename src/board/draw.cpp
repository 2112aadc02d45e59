// board/draw.cpp - the fifty-move rule, insufficient material and repetition.
#include "board/draw.h"

#include <algorithm>

namespace vatro {
namespace {

constexpr int FiftyMoves = 100;     // plies
constexpr int FirstRepetition = 4;  // plies that it takes at least to repeat a position

bool hasInsufficientMaterial(const Board_0x88& board) {
    if (board.totalCount() > 3) return false;
    for (const PieceType type : {Pawn, Rook, Queen}) {
        if (board.count(White, type) || board.count(Black, type)) return false;
    }
    // On a board with both kings this always holds, but odd positions may lack them.
    const int white = board.totalCount(White);
    const int black = board.totalCount(Black);
    return white <= 2 && (black == 1 || (white == 1 && black <= 2));
}

}  // namespace

bool isDraw(Board_0x88& board, DrawReason& reason) {
    const int clock = board.halfmoveClock;
    if (clock >= FiftyMoves) {
        reason = DrawReason::FiftyMoves;
        return true;
    }
    if (hasInsufficientMaterial(board)) {
        reason = DrawReason::InsufficientMaterial;
        return true;
    }
    reason = DrawReason::None;
    if (clock < FirstRepetition) return false;
    PlyRecord& now = board.record();
    const int current = static_cast<int>(board.ply);
    const int oldest = std::max(current - clock, 0);
    for (int earlier = current - FirstRepetition; earlier >= oldest; earlier -= 2) {
        if (board.plyRecords[earlier].key != now.key) continue;
        now.repetitions = static_cast<std::uint16_t>(board.plyRecords[earlier].repetitions + 1);
        if (now.repetitions > 1) reason = DrawReason::ThirdOccurrence;
        return true;
    }
    return false;
}

}  // namespace vatro
