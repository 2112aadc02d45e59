// egtb/generator/lines.h - the lines along which sliders move, one step at a time.
#pragma once

#include "board/types.h"

namespace vatro::egtb {

/// A step along a line, in squares and in files; rook lines come first.
struct LineStep {
    int step;
    int fileStep;
};
constexpr int FirstBishopLine = 4;
constexpr int LineCount = 8;
inline constexpr LineStep lineSteps[LineCount] = {{8, 0}, {-8, 0}, {1, 1},  {-1, -1},
                                                  {9, 1}, {7, -1}, {-7, 1}, {-9, -1}};

/// Calls `visit(to, unblocked)` for each square that a slider reaches on an otherwise empty way;
/// `unblocked` holds the black kings that are not in its way.
template <typename Visit>
void forEachSlide(PieceType type, Square64 from, SquareMask occupied, Visit visit) {
    const int begin = type == Bishop ? FirstBishopLine : 0;
    const int end = type == Rook ? FirstBishopLine : LineCount;
    for (int line = begin; line < end; ++line) {
        SquareMask unblocked = ~SquareMask{0};
        int file = fileOf(from) + lineSteps[line].fileStep;
        int to = from + lineSteps[line].step;
        while (to >= 0 && to < 64 && file >= 0 && file < 8) {
            const auto square = static_cast<Square64>(to);
            if (occupied & maskOf(square)) break;
            visit(square, unblocked);
            unblocked &= ~maskOf(square);
            to += lineSteps[line].step;
            file += lineSteps[line].fileStep;
        }
    }
}

/// Squares that a king on any of the squares attacks.
constexpr SquareMask kingSteps(SquareMask kings) {
    constexpr SquareMask NotFileA = 0xFEFEFEFEFEFEFEFEULL;
    constexpr SquareMask NotFileH = 0x7F7F7F7F7F7F7F7FULL;
    const SquareMask sideways = ((kings << 1) & NotFileA) | ((kings >> 1) & NotFileH);
    const SquareMask row = kings | sideways;
    return sideways | (row << 8) | (row >> 8);
}

}  // namespace vatro::egtb
