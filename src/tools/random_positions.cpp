// tools/random_positions.cpp - drawing positions and writing them.
//
// Pawns are drawn as a game moves them: each starts on a file of its own and changes files only
// by captures, of which there are as many as the other side has lost pieces.
#include "tools/random_positions.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "base/console.h"
#include "base/regular_file.h"
#include "base/text.h"
#include "board/attacks.h"
#include "board/side.h"

namespace vatro {
namespace {

/// 0 to limit - 1.
int draw(int limit, Random& random) {
    return static_cast<int>(random.below(static_cast<unsigned>(limit)));
}

Square drawEmptySquare(const Board_0x88& board, Random& random) {
    for (;;) {
        const Square square = as88(static_cast<Square64>(random.below(64)));
        if (board.pieceOn[square] == NoPiece) return square;
    }
}

/// What a side has left of its sixteen pieces.
struct Material {
    int counts[PieceTypeCount] = {};
    int promoted = 0;
    int total = 0;
};

Material drawMaterial(Random& random) {
    constexpr int whole[PieceTypeCount] = {0, 8, 2, 2, 2, 1, 1};
    Material material;
    const int keptOfSix = 1 + draw(6, random);  // from nearly bare kings to nearly full boards
    for (int type = Pawn; type <= Queen; ++type) {
        for (int i = 0; i < whole[type]; ++i) {
            if (draw(6, random) < keptOfSix) ++material.counts[type];
        }
    }
    while (material.counts[Pawn] + material.promoted < whole[Pawn] && random.oneIn(8)) {
        ++material.counts[random.oneIn(2) ? Queen : Knight + draw(3, random)];
        ++material.promoted;
    }
    material.counts[King] = 1;
    for (const int count : material.counts) {
        material.total += count;
    }
    return material;
}

/// Draws one position. Every step returns false when its draw came to nothing; the caller then
/// starts again.
class PositionDraw {
  public:
    PositionDraw(Board_0x88& target, Random& source) : board(target), random(source) {}

    bool tryOnce() {
        board.clearBoard();
        material[White] = drawMaterial(random);
        material[Black] = drawMaterial(random);
        if (!placePawns<White>() || !placePawns<Black>() || pawnsHavePassed()) return false;
        if (!placePieces<White>() || !placePieces<Black>()) return false;
        board.sideToMove = static_cast<std::uint8_t>(draw(2, random));
        return board.sideToMove == White ? finish<White>() : finish<Black>();
    }

  private:
    static constexpr int NoRank = -1;

    template <Colour Us>
    bool placePawns();
    bool pawnsHavePassed() const;
    template <Colour Us>
    bool placePieces();
    template <Colour Us>
    bool finish();
    template <Colour Us>
    void drawCastlingRights();
    template <Colour Us>
    void drawEnPassant();

    Board_0x88& board;
    Random& random;
    Material material[ColourCount];
    int homeFileRank[ColourCount][8] = {};  // rank of the pawn that never left its file, or NoRank
};

template <Colour Us>
bool PositionDraw::placePawns() {
    using S = Side<Us>;
    // Each promoted pawn has captured once, to get past the pawn in front of it.
    int captures = SlotCount - material[S::Them].total - material[Us].promoted;
    if (captures < 0) return false;
    int files[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    for (int i = 0; i < 8; ++i) {
        std::swap(files[i], files[i + draw(8 - i, random)]);
        homeFileRank[Us][i] = NoRank;
    }
    for (int i = 0; i < material[Us].counts[Pawn]; ++i) {
        const int relative = 1 + (random.oneIn(3) ? 0 : draw(6, random));  // a third has not moved
        const int rank = S::relativeRank(relative);
        int file = files[i];
        if (relative > 1 && captures > 0 && random.oneIn(4)) {
            file += random.oneIn(2) ? 1 : -1;
            --captures;
        } else {
            homeFileRank[Us][file] = rank;
        }
        const Square square = squareAt(file, rank);
        if (!isOnBoard(square) || board.pieceOn[square] != NoPiece) return false;
        board.addPiece(square, Pawn, Us);
    }
    return true;
}

/// Two pawns that stayed on one file cannot have gone past each other.
bool PositionDraw::pawnsHavePassed() const {
    for (int file = 0; file < 8; ++file) {
        const int white = homeFileRank[White][file];
        const int black = homeFileRank[Black][file];
        if (white != NoRank && black != NoRank && white > black) return true;
    }
    return false;
}

template <Colour Us>
bool PositionDraw::placePieces() {
    using S = Side<Us>;
    Material left = material[Us];
    const auto place = [&](Square square, PieceType type) {
        --left.counts[type];
        return board.addPiece(square, type, Us);
    };
    // Castling needs king and rooks at home, where chance alone rarely puts them.
    if (random.oneIn(3) && board.pieceOn[S::KingHome] == NoPiece) {
        if (!place(S::KingHome, King)) return false;
        for (const Square rook : {S::home(A1), S::home(H1)}) {
            if (left.counts[Rook] == 0 || random.oneIn(4)) continue;
            if (board.pieceOn[rook] == NoPiece && !place(rook, Rook)) return false;
        }
    }
    for (int type = King; type > Pawn; --type) {
        while (left.counts[type] > 0) {
            if (!place(drawEmptySquare(board, random), static_cast<PieceType>(type))) return false;
        }
    }
    // A second bishop on squares of the same colour comes from a promotion.
    constexpr SquareMask darkSquares = 0xAA55AA55AA55AA55ULL;
    const SquareMask bishops = board.pieceMask[Us][Bishop];
    const int dark = countSquares(bishops & darkSquares);
    const int light = countSquares(bishops & ~darkSquares);
    int promoted = std::max(dark - 1, 0) + std::max(light - 1, 0);
    promoted += std::max(board.count(Us, Knight) - 2, 0);
    promoted += std::max(board.count(Us, Rook) - 2, 0);
    promoted += std::max(board.count(Us, Queen) - 1, 0);
    return promoted <= material[Us].promoted;
}

/// With `Us` to move: is the position legal, and which rights and clock does it get?
template <Colour Us>
bool PositionDraw::finish() {
    using S = Side<Us>;
    const Square64 king = as64(board.kingSquare(Us));
    if (kingDistance(king, as64(board.kingSquare(S::Them))) < 2) return false;
    if (findCheckers<S::Them>(board)) return false;
    const SquareMask checkers = findCheckers<Us>(board);
    // Few double checks can arise in play, so none is drawn. A pawn that gives check has just
    // moved, so it does not stand on its second rank.
    if (checkers & (checkers - 1)) return false;
    const bool checkedByPawn = (checkers & board.pieceMask[S::Them][Pawn]) != 0;
    if (checkedByPawn && rankOf(lowestSquare(checkers)) == S::relativeRank(6)) return false;
    drawCastlingRights<White>();
    drawCastlingRights<Black>();
    drawEnPassant<Us>();
    const bool pawnHasMoved = checkedByPawn || board.epSquare != NoSquare;
    board.halfmoveClock = static_cast<std::uint8_t>(pawnHasMoved ? 0 : draw(20, random));
    board.record().key = board.fullKey();
    return true;
}

template <Colour Us>
void PositionDraw::drawCastlingRights() {
    using S = Side<Us>;
    if (board.kingSquare(Us) != S::KingHome) return;
    const SquareMask rooks = board.pieceMask[Us][Rook];
    for (const auto& [rook, right] : {std::pair(H1, S::KingSide), std::pair(A1, S::QueenSide)}) {
        if (!(rooks & maskOf(S::home(rook))) || random.oneIn(4)) continue;
        board.castlingRights = static_cast<std::uint8_t>(board.castlingRights | right);
    }
}

/// Sets the en-passant square behind a pawn that can just have made a double step, if there is one.
template <Colour Us>
void PositionDraw::drawEnPassant() {
    constexpr Colour Pusher = Side<Us>::Them;
    using S = Side<Pusher>;
    for (int file = 0; file < 8; ++file) {
        const int rank = S::relativeRank(3);
        if (homeFileRank[Pusher][file] != rank || random.oneIn(3)) continue;
        const Square to = squareAt(file, rank);
        const Square passed = to - S::Up;
        const Square from = passed - S::Up;
        if (board.pieceOn[passed] != NoPiece || board.pieceOn[from] != NoPiece) continue;
        if (!(pawnAttacks[Pusher][as64(passed)] & board.pieceMask[Us][Pawn])) continue;
        // Before the double step it was the pusher's turn, so this king was not in check.
        const SquareMask mover = maskOf(to);
        const SquareMask occupied = (board.occupied() ^ mover) | maskOf(from);
        const Square64 king = as64(board.kingSquare(Us));
        const SquareMask checkers = attackersOf<Pusher>(board, king, occupied) & ~mover;
        if (checkers || (pawnAttacks[Pusher][as64(from)] & maskOf(king))) continue;
        board.epSquare = passed;
        return;
    }
}

std::string drawFEN(Board_0x88& board, Random& random) {
    setupRandomPosition(board, random);
    // A move number late enough for as many captures as pieces are missing.
    return board.toFEN(static_cast<unsigned>(25 + draw(50, random)));
}

}  // namespace

void setupRandomPosition(Board_0x88& board, Random& random) {
    PositionDraw position(board, random);
    while (!position.tryOnce()) {
    }
    board.perftKeys[board.perftPly] = board.record().key;
}

std::string randomPositionFEN(Random& random) {
    Board_0x88 board;
    return drawFEN(board, random);
}

bool writeRandomPositions(int count, const char* path, Random& random, StopCheck& stop) {
    const FileHandle file = path ? createFile(path) : nullptr;
    if (path && !file) {
        say(formatted("# ERROR: failed to open file \"%s\" for writing", path));
        return false;
    }
    Board_0x88 board;
    bool written = true;
    int drawn = 0;
    do {
        const std::string line = drawFEN(board, random) + '\n';
        if (file) {
            written = written && std::fputs(line.c_str(), file.get()) >= 0;
        } else {
            write(line);
        }
        ++drawn;
    } while (drawn < count && !stop.mustStop());
    say(stop.hasStopped() ? InterruptedLine : "");
    if (!file) return true;
    if (!written || std::fflush(file.get()) != 0) {
        say(formatted("# ERROR: failed to write to file \"%s\"\n", path));
        return false;
    }
    say(formatted("Wrote %d random FENs to file \"%s\"\n", drawn, path));
    return true;
}

}  // namespace vatro
