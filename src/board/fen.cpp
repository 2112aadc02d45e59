// board/fen.cpp - positions as text: reading and writing Forsyth-Edwards notation.
//
// The reader is strict about form (one blank between fields, letters in order) but does not judge
// the position: kings may be missing, pawns may stand on the last rank.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "base/text.h"
#include "board/board.h"
#include "board/zobrist.h"

namespace vatro {
namespace {

constexpr std::size_t MaxClockDigits = 4;   // of the half-move clock, which is kept to its range
constexpr char castlingLetters[] = "KQkq";  // the letter of right bit i

PieceType pieceFromLetter(char letter) {
    const char lower = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const char* found = std::strchr(pieceLetters + Pawn, lower);
    return found && *found ? static_cast<PieceType>(found - pieceLetters) : NoPiece;
}

bool endsField(char byte) { return byte == ' ' || byte == '\0'; }

}  // namespace

bool Board_0x88::setupFromFEN(const char* fen) {
    clearBoard();
    if (!readPlacement(fen) || !readSideToMove(fen) || !readCastlingRights(fen)) return false;
    dropImpossibleRights();
    if (!readEnPassant(fen)) return false;
    if (*fen != '\0' && !readClocks(fen + 1)) return false;
    perftKeys[perftPly] = record().key;
    return true;
}

bool Board_0x88::readPlacement(const char*& text) {
    int rank = 7;
    int file = 0;
    for (; *text != ' '; ++text) {
        const char byte = *text;
        if (byte >= '1' && byte <= '8') {
            file += byte - '0';
            if (file > 8) return false;
        } else if (byte == '/') {
            if (file != 8 || rank == 0) return false;
            --rank;
            file = 0;
        } else {
            const PieceType type = pieceFromLetter(byte);
            if (type == NoPiece || file > 7) return false;
            const Colour colour = std::isupper(static_cast<unsigned char>(byte)) ? White : Black;
            if (!addPiece(squareAt(file, rank), type, colour)) return false;
            ++file;
        }
    }
    ++text;
    return rank == 0 && file == 8;
}

bool Board_0x88::readSideToMove(const char*& text) {
    if (*text == 'w') {
        sideToMove = White;
    } else if (*text == 'b') {
        sideToMove = Black;
        record().key ^= zobrist.side;
    } else {
        return false;
    }
    if (text[1] != ' ') return false;
    text += 2;
    return true;
}

bool Board_0x88::readCastlingRights(const char*& text) {
    if (*text == '-') {
        if (text[1] != ' ') return false;
        text += 2;
        return true;
    }
    for (; *text != ' '; ++text) {  // an empty field grants no rights
        const char* letter = std::strchr(castlingLetters, *text);
        if (!letter || !*letter) return false;
        const unsigned right = 1U << (letter - castlingLetters);
        if (castlingRights >= right) return false;  // it or a later one is already there
        castlingRights = static_cast<std::uint8_t>(castlingRights | right);
        record().key ^= zobrist.castling[right];
    }
    ++text;
    return true;
}

void Board_0x88::dropImpossibleRights() {
    const unsigned granted = castlingRights;
    castlingRights = static_cast<std::uint8_t>(granted & possibleRights(*this));
    updateCastlingKey(granted, castlingRights, record().key);
}

// Leaves `text` at the blank or the end that follows the field.
bool Board_0x88::readEnPassant(const char*& text) {
    if (*text == '-') {
        ++text;
        return endsField(*text);
    }
    if (text[0] < 'a' || text[0] > 'h') return false;
    if (text[1] != (sideToMove == White ? '6' : '3')) return false;
    const Square target = squareAt(text[0] - 'a', text[1] - '1');
    const Square pawn = target + (sideToMove == White ? -16 : 16);  // it has just advanced
    if (pieceOn[pawn] != Pawn || colourOn[pawn] == sideToMove) return false;
    text += 2;
    if (!endsField(*text)) return false;
    // The square is kept only if it is empty and a pawn stands ready to capture there.
    for (const Square beside : {pawn - 1, pawn + 1}) {
        if (!isOnBoard(beside) || pieceOn[beside] != Pawn || colourOn[beside] != sideToMove) {
            continue;
        }
        if (pieceOn[target] != NoPiece) return true;
        epSquare = target;
        record().key ^= zobrist.epFile[fileOf(target)];
        return true;
    }
    return true;
}

bool Board_0x88::readClocks(std::string_view text) {
    const std::size_t blank = text.find(' ');
    const bool isMoveNumberAlone = blank == std::string_view::npos;
    const std::string_view moveNumber = isMoveNumberAlone ? text : text.substr(blank + 1);
    if (!isMoveNumberAlone) {
        if (blank > MaxClockDigits) return false;
        const int clock = readNumber(text.substr(0, blank));
        if (clock < 0) return false;
        halfmoveClock = static_cast<std::uint8_t>(std::min(clock, UINT8_MAX));
    }
    return readNumber(moveNumber) >= 1;
}

std::string Board_0x88::toFEN(unsigned fullMoveNumber) const {
    std::string fen;
    for (int rank = 7; rank >= 0; --rank) {
        int empty = 0;
        for (int file = 0; file < 8; ++file) {
            const Square square = squareAt(file, rank);
            if (pieceOn[square] == NoPiece) {
                ++empty;
                continue;
            }
            if (empty) fen += std::to_string(empty);
            empty = 0;
            const char letter = pieceLetters[pieceOn[square]];
            fen += colourOn[square] == White
                       ? static_cast<char>(std::toupper(static_cast<unsigned char>(letter)))
                       : letter;
        }
        if (empty) fen += std::to_string(empty);
        fen += rank ? '/' : ' ';
    }
    fen += sideToMove == Black ? "b " : "w ";
    for (int i = 0; i < 4; ++i) {
        if (castlingRights & (1 << i)) fen += castlingLetters[i];
    }
    if (!castlingRights) fen += '-';
    fen += ' ';
    fen += epSquare == NoSquare ? "-" : squareText(as64(epSquare));
    return fen + ' ' + std::to_string(halfmoveClock) + ' ' + std::to_string(fullMoveNumber);
}

}  // namespace vatro
