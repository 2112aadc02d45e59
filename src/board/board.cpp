// board/board.cpp - clearing the board, placing pieces, keys from scratch, display.
#include "board/board.h"

#include <algorithm>
#include <cctype>

#include "board/piece_square_table.h"
#include "board/zobrist.h"

namespace vatro {
namespace {

/// The first free slot of a range, or NoSlot.
int findFreeSlot(const PieceList& list, int first, int count) {
    for (int slot = first; slot < first + count; ++slot) {
        if (list.squares[slot] == NoSquare) return slot;
    }
    return NoSlot;
}

/// The slot that a further piece takes, or NoSlot when the side may not have another one.
int chooseSlot(const PieceList& list, PieceType type) {
    const SlotRule& rule = slotRules[type];
    if (list.counts[type] >= rule.maxCount) return NoSlot;
    const int slot = findFreeSlot(list, rule.firstSlot, rule.slotCount);
    if (slot != NoSlot || type == Pawn || type == King) return slot;
    return findFreeSlot(list, slotRules[Pawn].firstSlot, slotRules[Pawn].slotCount);
}

}  // namespace

Board_0x88::Board_0x88() {
    std::fill(std::begin(plyRecords), std::end(plyRecords), PlyRecord{});
    std::fill(std::begin(perftKeys), std::end(perftKeys), 0);
    perftPly = 0;
    clearBoard();
}

void Board_0x88::clearBoard() {
    std::fill(std::begin(pieceOn), std::end(pieceOn), NoPiece);
    std::fill(std::begin(colourOn), std::end(colourOn), NoColour);
    std::fill(std::begin(slotOn), std::end(slotOn), NoSlot);
    for (PieceList& list : pieceLists) {
        std::fill(std::begin(list.squares), std::end(list.squares), NoSquare);
        std::fill(std::begin(list.counts), std::end(list.counts), std::uint8_t{0});
    }
    for (auto& masks : pieceMask) {
        std::fill(std::begin(masks), std::end(masks), SquareMask{0});
    }
    pstScore[White] = pstScore[Black] = {};
    ply = 0;
    plyRecords[0] = {};
    castlingRights = 0;
    epSquare = NoSquare;
    halfmoveClock = 0;
    sideToMove = NoColour;
}

void putInSlot(Board_0x88& board, Square square, PieceType type, Colour colour, int slot) {
    PieceList& list = board.pieceLists[colour];
    board.pieceOn[square] = type;
    board.colourOn[square] = colour;
    board.slotOn[square] = static_cast<std::uint8_t>(slot);
    list.squares[slot] = square;
    list.countIn(type, slot);
    const SquareMask bit = maskOf(square);
    board.pieceMask[colour][type] |= bit;
    board.pieceMask[colour][NoPiece] |= bit;
}

bool Board_0x88::addPiece(Square square, PieceType type, Colour colour) {
    const int slot = chooseSlot(pieceLists[colour], type);
    if (slot == NoSlot) return false;
    putInSlot(*this, square, type, colour, slot);
    const Square64 sq64 = as64(square);
    const Key key = zobrist.pieceSquare(colour, type, sq64);
    pstScore[colour] += pieceSquareTable.at(colour, type, sq64);
    record().key ^= key;
    if (type == Pawn) record().pawnKey ^= key;
    return true;
}

Key Board_0x88::pieceKey(Colour colour) const {
    Key key = 0;
    for (const Square square : pieceLists[colour].squares) {
        if (square != NoSquare) key ^= zobrist.pieceSquare(colour, pieceAt(square), as64(square));
    }
    return key;
}

Key Board_0x88::pawnKeyOf() const {
    Key key = 0;
    for (const Colour colour : {White, Black}) {
        for (int slot = FirstPawnSlot; slot < SlotCount; ++slot) {
            const Square square = pieceLists[colour].squares[slot];
            if (square == NoSquare || pieceAt(square) != Pawn) continue;
            key ^= zobrist.pieceSquare(colour, Pawn, as64(square));
        }
    }
    return key;
}

Key Board_0x88::fullKey() const {
    Key key = pieceKey(White) ^ pieceKey(Black) ^ castlingKey(castlingRights);
    if (epSquare != NoSquare) key ^= zobrist.epFile[fileOf(epSquare)];
    if (sideToMove == Black) key ^= zobrist.side;
    return key;
}

unsigned possibleRights(const Board_0x88& board) {
    struct Home {
        CastlingRight right;
        Colour colour;
        Square king;
        Square rook;
    };
    constexpr Home homes[] = {{WhiteKingSide, White, E1, H1},
                              {WhiteQueenSide, White, E1, A1},
                              {BlackKingSide, Black, E8, H8},
                              {BlackQueenSide, Black, E8, A8}};
    unsigned rights = 0;
    for (const Home& home : homes) {
        const SquareMask* pieces = board.pieceMask[home.colour];
        if ((pieces[King] & maskOf(home.king)) && (pieces[Rook] & maskOf(home.rook))) {
            rights |= home.right;
        }
    }
    return rights;
}

std::string boardText(const Board_0x88& board) {
    std::string text;
    for (int rank = 7; rank >= 0; --rank) {
        text += "# ";
        for (int file = 0; file < 8; ++file) {
            const Square square = squareAt(file, rank);
            const char letter = pieceLetters[board.pieceOn[square]];
            text += board.colourOn[square] == White
                        ? static_cast<char>(std::toupper(static_cast<unsigned char>(letter)))
                        : letter;
        }
        text += '\n';
    }
    return text + "#\n";
}

bool isConsistent(const Board_0x88& board) {
    Board_0x88 copy;
    for (const Colour colour : {White, Black}) {
        const PieceList& list = board.pieceLists[colour];
        for (int slot = 0; slot < SlotCount; ++slot) {
            const Square square = list.squares[slot];
            if (square == NoSquare) continue;
            if (!isOnBoard(square) || board.slotOn[square] != slot) return false;
            if (copy.pieceOn[square] != NoPiece) return false;
            putInSlot(copy, square, board.pieceAt(square), colour, slot);
            copy.pstScore[colour] +=
                pieceSquareTable.at(colour, board.pieceAt(square), as64(square));
        }
        if (!std::equal(std::begin(list.counts), std::end(list.counts),
                        std::begin(copy.pieceLists[colour].counts))) {
            return false;
        }
        if (!std::equal(std::begin(board.pieceMask[colour]), std::end(board.pieceMask[colour]),
                        std::begin(copy.pieceMask[colour]))) {
            return false;
        }
        if (!(board.pstScore[colour] == copy.pstScore[colour])) return false;
    }
    return std::equal(std::begin(board.pieceOn), std::end(board.pieceOn),
                      std::begin(copy.pieceOn)) &&
           std::equal(std::begin(board.colourOn), std::end(board.colourOn),
                      std::begin(copy.colourOn)) &&
           std::equal(std::begin(board.slotOn), std::end(board.slotOn), std::begin(copy.slotOn)) &&
           (board.castlingRights & ~possibleRights(board)) == 0 &&
           board.record().key == board.fullKey() && board.record().pawnKey == board.pawnKeyOf();
}

}  // namespace vatro
