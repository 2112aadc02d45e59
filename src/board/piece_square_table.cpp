// board/piece_square_table.cpp - the values of the piece-square tables.
#include "board/piece_square_table.h"

namespace vatro {
namespace {

// (middle game, end game) for White: as one reads a board, rank 8 first, files a to d. Files e to h
// mirror them. Tuned; no derivation.
// clang-format off
constexpr ScorePair leftHalf[PieceKindCount][8][4] = {
    {  // Pawn
        {{   0,    0}, {   0,    0}, {   0,    0}, {   0,    0}},  // rank 8
        {{ 132,  101}, { 154,  117}, { 146,  138}, { 135,  144}},  // rank 7
        {{  61,   58}, {  83,   74}, {  96,   61}, {  85,   67}},  // rank 6
        {{   7,   31}, {  29,   47}, {  42,   34}, {  71,   18}},  // rank 5
        {{  -7,   18}, {  15,   34}, {  28,   21}, {  57,    5}},  // rank 4
        {{   2,   10}, {  24,   26}, {  37,   13}, {  26,   19}},  // rank 3
        {{  -7,    0}, {  15,   16}, {   7,   37}, {  -4,   43}},  // rank 2
        {{   0,    0}, {   0,    0}, {   0,    0}, {   0,    0}},  // rank 1
    },
    {  // Knight
        {{-130,  -51}, { -21,   -5}, { -10,    3}, {  -9,   15}},  // rank 8
        {{  31,  -13}, {  65,    5}, {  76,   13}, {  77,   25}},  // rank 7
        {{  90,  -11}, { 124,    7}, { 135,   15}, { 136,   27}},  // rank 6
        {{  46,   21}, {  80,   39}, {  91,   47}, {  92,   59}},  // rank 5
        {{  38,   12}, {  72,   30}, {  83,   38}, {  84,   50}},  // rank 4
        {{  37,  -12}, {  71,    6}, {  82,   14}, {  83,   26}},  // rank 3
        {{  21,  -22}, {  55,   -4}, {  66,    4}, {  67,   16}},  // rank 2
        {{   0,  -40}, {  34,  -22}, {  45,  -14}, {  46,   -2}},  // rank 1
    },
    {  // Bishop
        {{ -15,   -1}, {   2,    3}, {  -3,    6}, {  -9,   13}},  // rank 8
        {{  11,    4}, {  28,    8}, {  23,   11}, {  17,   18}},  // rank 7
        {{  40,    5}, {  57,    9}, {  52,   12}, {  46,   19}},  // rank 6
        {{  28,   11}, {  45,   15}, {  40,   18}, {  34,   25}},  // rank 5
        {{  29,   -1}, {  46,    3}, {  41,    6}, {  35,   13}},  // rank 4
        {{  43,   -9}, {  60,   -5}, {  55,   -2}, {  49,    5}},  // rank 3
        {{  58,  -28}, {  75,  -24}, {  70,  -21}, {  64,  -14}},  // rank 2
        {{  35,  -26}, {  52,  -22}, {  47,  -19}, {  41,  -12}},  // rank 1
    },
    {  // Rook
        {{  49,   43}, {  45,   55}, {  67,   52}, {  70,   47}},  // rank 8
        {{  80,   38}, {  76,   50}, {  98,   47}, { 101,   42}},  // rank 7
        {{  32,   38}, {  28,   50}, {  50,   47}, {  53,   42}},  // rank 6
        {{  22,   36}, {  18,   48}, {  40,   45}, {  43,   40}},  // rank 5
        {{  15,   30}, {  11,   42}, {  33,   39}, {  36,   34}},  // rank 4
        {{  18,   16}, {  14,   28}, {  36,   25}, {  39,   20}},  // rank 3
        {{  11,   16}, {   7,   28}, {  29,   25}, {  32,   20}},  // rank 2
        {{  48,    0}, {  44,   12}, {  66,    9}, {  69,    4}},  // rank 1
    },
    {  // Queen
        {{  74,   59}, {  67,   72}, {  69,   68}, {  70,   81}},  // rank 8
        {{  14,   69}, {   7,   82}, {   9,   78}, {  10,   91}},  // rank 7
        {{  75,   23}, {  68,   36}, {  70,   32}, {  71,   45}},  // rank 6
        {{  37,   58}, {  30,   71}, {  32,   67}, {  33,   80}},  // rank 5
        {{  48,   36}, {  41,   49}, {  43,   45}, {  44,   58}},  // rank 4
        {{  68,    5}, {  61,   18}, {  63,   14}, {  64,   27}},  // rank 3
        {{  93,  -31}, {  86,  -18}, {  88,  -22}, {  89,   -9}},  // rank 2
        {{  93,  -32}, {  86,  -19}, {  88,  -23}, {  89,  -10}},  // rank 1
    },
    {  // King
        {{  13,   47}, {  42,   72}, { -31,  100}, { -11,   95}},  // rank 8
        {{  23,   94}, {  52,  119}, { -21,  147}, {  -1,  142}},  // rank 7
        {{  56,  103}, {  85,  128}, {  12,  156}, {  32,  151}},  // rank 6
        {{ -29,   96}, {   0,  121}, { -73,  149}, { -53,  144}},  // rank 5
        {{-112,   89}, { -83,  114}, {-156,  142}, {-136,  137}},  // rank 4
        {{ -68,   73}, { -39,   98}, {-112,  126}, { -92,  121}},  // rank 3
        {{ -43,   56}, { -14,   81}, { -87,  109}, { -67,  104}},  // rank 2
        {{  19,    0}, {  48,   25}, { -25,   53}, {  -5,   48}},  // rank 1
    },
};
// clang-format on

constexpr PieceSquareTable build() {
    PieceSquareTable table{};
    for (int kind = 0; kind < PieceKindCount; ++kind) {
        for (const Square64 square : allSquares) {
            const int file = fileOf(square) < 4 ? fileOf(square) : 7 - fileOf(square);
            const ScorePair pair = leftHalf[kind][7 - rankOf(square)][file];
            const ScoreSum value{pair.mg, pair.eg};
            table.values[White][kind][square] = value;
            table.values[Black][kind][mirrorRanks(square)] = value;
        }
    }
    return table;
}

}  // namespace

constexpr PieceSquareTable pieceSquareTable = build();

}  // namespace vatro
