// board/make_move.cpp - make and unmake, incremental in keys and sums.
//
// Unmake computes no keys: stepping `ply` (or `perftPly`) back returns to the earlier record.
#include "board/make_move.h"

#include <cassert>

#include "board/geometry.h"
#include "board/piece_square_table.h"
#include "board/side.h"
#include "board/zobrist.h"

namespace vatro {
namespace {

/// How much a make keeps up to date.
enum class Track { Game, Perft };

/// The keys of the position that a make is building.
struct Keys {
    Key key;
    Key pawnKey;
};

struct RookStep {
    Square64 from;
    Square64 to;

    constexpr RookStep(Square corner, Square beside) : from(as64(corner)), to(as64(beside)) {}
};
constexpr RookStep castlingRook[4] = {{H1, F1}, {A1, D1}, {H8, F8}, {A8, D8}};  // by extraOf

/// By Square64: the rights that a move from or to the square leaves. A move keeps what both of its
/// squares leave.
struct KeptRights {
    static constexpr unsigned AllRights = 15;
    std::uint8_t bySquare[64];

    constexpr KeptRights() : bySquare() {
        for (auto& kept : bySquare) {
            kept = AllRights;
        }
        bySquare[as64(E1)] = AllRights & ~(WhiteKingSide | WhiteQueenSide);
        bySquare[as64(H1)] = AllRights & ~WhiteKingSide;
        bySquare[as64(A1)] = AllRights & ~WhiteQueenSide;
        bySquare[as64(E8)] = AllRights & ~(BlackKingSide | BlackQueenSide);
        bySquare[as64(H8)] = AllRights & ~BlackKingSide;
        bySquare[as64(A8)] = AllRights & ~BlackQueenSide;
    }
};
constexpr KeptRights keptRights;

/// The squares are Square64, as in move words: converting them twice costs in so short a function.
template <Track T>
[[gnu::always_inline]] inline void movePiece(
    Board_0x88& board, Square64 source, Square64 target, Colour colour, Keys* keys) {
    const Square from = as88(source);
    const Square to = as88(target);
    const PieceType type = board.pieceAt(from);
    const int slot = board.slotOn[from];
    board.pieceOn[from] = NoPiece;
    board.colourOn[from] = NoColour;
    board.slotOn[from] = NoSlot;
    board.pieceOn[to] = type;
    board.colourOn[to] = colour;
    board.slotOn[to] = static_cast<std::uint8_t>(slot);
    board.pieceLists[colour].squares[slot] = to;
    const SquareMask both = maskOf(source) | maskOf(target);
    board.pieceMask[colour][type] ^= both;
    board.pieceMask[colour][NoPiece] ^= both;
    if (keys) {
        const Key change =
            zobrist.pieceSquare(colour, type, source) ^ zobrist.pieceSquare(colour, type, target);
        keys->key ^= change;
        if (T == Track::Game && type == Pawn) keys->pawnKey ^= change;
    }
    if constexpr (T == Track::Game) {
        board.pstScore[colour] +=
            pieceSquareTable.at(colour, type, target) - pieceSquareTable.at(colour, type, source);
    }
}

/// Takes a piece off the board. Returns it in the form of UndoRecord::captured.
template <Track T>
[[gnu::always_inline]] inline std::uint8_t removePiece(Board_0x88& board,
                                                       Square64 sq64,
                                                       Colour colour,
                                                       Keys& keys) {
    const Square square = as88(sq64);
    const PieceType type = board.pieceAt(square);
    const int slot = board.slotOn[square];
    PieceList& list = board.pieceLists[colour];
    board.pieceOn[square] = NoPiece;
    board.colourOn[square] = NoColour;
    board.slotOn[square] = NoSlot;
    list.squares[slot] = NoSquare;
    list.countOut(type, slot);
    board.pieceMask[colour][type] ^= maskOf(sq64);
    board.pieceMask[colour][NoPiece] ^= maskOf(sq64);
    const Key key = zobrist.pieceSquare(colour, type, sq64);
    keys.key ^= key;
    if constexpr (T == Track::Game) {
        if (type == Pawn) keys.pawnKey ^= key;
        board.pstScore[colour] -= pieceSquareTable.at(colour, type, sq64);
    }
    return static_cast<std::uint8_t>((type << 4) | (slot & 15));
}

/// Puts a captured piece back into the slot it came from.
template <Track T>
void putPiece(Board_0x88& board, Square square, Colour colour, std::uint8_t captured) {
    const auto type = static_cast<PieceType>(captured >> 4);
    putInSlot(board, square, type, colour, captured & 15);
    if constexpr (T == Track::Game) {
        board.pstScore[colour] += pieceSquareTable.at(colour, type, as64(square));
    }
}

/// Turns a pawn on its last rank into `after`, or a promoted piece back into a pawn. Inlined, its
/// temporaries spill the registers of the common moves.
template <Track T>
[[gnu::noinline]] void changeType(
    Board_0x88& board, Square64 sq64, Colour colour, PieceType after, Keys* keys) {
    const Square square = as88(sq64);
    const PieceType before = board.pieceAt(square);
    PieceList& list = board.pieceLists[colour];
    board.pieceOn[square] = after;
    const int slot = board.slotOn[square];
    list.countOut(before, slot);
    list.countIn(after, slot);
    board.pieceMask[colour][before] ^= maskOf(sq64);
    board.pieceMask[colour][after] ^= maskOf(sq64);
    if (keys) {
        keys->key ^=
            zobrist.pieceSquare(colour, before, sq64) ^ zobrist.pieceSquare(colour, after, sq64);
        if (T == Track::Game && before == Pawn) {
            keys->pawnKey ^= zobrist.pieceSquare(colour, Pawn, sq64);
        }
    }
    if constexpr (T == Track::Game) {
        board.pstScore[colour] +=
            pieceSquareTable.at(colour, after, sq64) - pieceSquareTable.at(colour, before, sq64);
    }
}

void setEnPassant(Board_0x88& board, Square square, Keys& keys) {
    if (board.epSquare != NoSquare) keys.key ^= zobrist.epFile[fileOf(board.epSquare)];
    if (square != NoSquare) keys.key ^= zobrist.epFile[fileOf(square)];
    board.epSquare = square;
}

/// A clock that has reached the end of its range stays there: the draw was due long before.
constexpr std::uint8_t oneMore(std::uint8_t clock) {
    return static_cast<std::uint8_t>(clock + (clock != UINT8_MAX));
}

/// The en-passant square behind a pawn that has advanced two ranks; NoSquare when no enemy pawn
/// stands ready to capture there.
template <Colour Us>
Square squareBehind(const Board_0x88& board, Square to) {
    const SquareMask beside =
        pawnAttacks[Us][as64(to - Side<Us>::Up)] & board.pieceMask[Side<Us>::Them][Pawn];
    return beside ? to - Side<Us>::Up : NoSquare;
}

/// Returns the keys of the position after the move, given those before.
template <Colour Us, Track T>
[[gnu::always_inline]] inline Keys make(Board_0x88& board, Move move, UndoRecord& undo, Keys keys) {
    using S = Side<Us>;
    const Square from = fromSquare(move);
    const Square to = toSquare(move);
    undo.castlingRights = board.castlingRights;
    undo.epSquare = board.epSquare;
    undo.halfmoveClock = board.halfmoveClock;
    undo.captured = 0;

    std::uint8_t clock = 0;
    Square epSquare = NoSquare;
    switch (typeOf(move)) {
        case Normal: {
            const bool pawnMove = board.pieceOn[from] == Pawn;
            if (board.pieceOn[to] != NoPiece) {
                undo.captured = removePiece<T>(board, to64(move), S::Them, keys);
            } else if (!pawnMove) {
                clock = oneMore(board.halfmoveClock);
            }
            movePiece<T>(board, from64(move), to64(move), Us, &keys);
            if (pawnMove && extraOf(move) == DoubleStep) epSquare = squareBehind<Us>(board, to);
            break;
        }
        case Promotion:
            if (board.pieceOn[to] != NoPiece) {
                undo.captured = removePiece<T>(board, to64(move), S::Them, keys);
            }
            movePiece<T>(board, from64(move), to64(move), Us, &keys);
            changeType<T>(board, to64(move), Us, promotionPiece(move), &keys);
            break;
        case Castling: {
            const RookStep& rook = castlingRook[extraOf(move)];
            movePiece<T>(board, from64(move), to64(move), Us, &keys);
            movePiece<T>(board, rook.from, rook.to, Us, &keys);
            clock = oneMore(board.halfmoveClock);
            break;
        }
        case EnPassant:
            undo.captured = removePiece<T>(board, as64(to - S::Up), S::Them, keys);
            movePiece<T>(board, from64(move), to64(move), Us, &keys);
            break;
    }
    setEnPassant(board, epSquare, keys);
    if constexpr (T == Track::Game) board.halfmoveClock = clock;
    const unsigned kept = keptRights.bySquare[from64(move)] & keptRights.bySquare[to64(move)];
    updateCastlingKey(board.castlingRights, board.castlingRights & kept, keys.key);
    board.castlingRights = static_cast<std::uint8_t>(board.castlingRights & kept);
    board.sideToMove = S::Them;
    keys.key ^= zobrist.side;
    return keys;
}

template <Colour Us, Track T>
[[gnu::always_inline]] inline void unmake(Board_0x88& board, Move move, const UndoRecord& undo) {
    using S = Side<Us>;
    const Square to = toSquare(move);
    board.sideToMove = Us;
    switch (typeOf(move)) {
        case Promotion:
            changeType<T>(board, to64(move), Us, Pawn, nullptr);
            [[fallthrough]];
        case Normal:
            movePiece<T>(board, to64(move), from64(move), Us, nullptr);
            if (undo.captured) putPiece<T>(board, to, S::Them, undo.captured);
            break;
        case Castling: {
            const RookStep& rook = castlingRook[extraOf(move)];
            movePiece<T>(board, to64(move), from64(move), Us, nullptr);
            movePiece<T>(board, rook.to, rook.from, Us, nullptr);
            break;
        }
        case EnPassant:
            movePiece<T>(board, to64(move), from64(move), Us, nullptr);
            putPiece<T>(board, to - S::Up, S::Them, undo.captured);
            break;
    }
    board.castlingRights = undo.castlingRights;
    board.epSquare = undo.epSquare;
    board.halfmoveClock = undo.halfmoveClock;
}

}  // namespace

template <Colour Us>
void makeMove(Board_0x88& board, Move move, UndoRecord& undo) {
    assert(board.ply + 1 < PlyRecordCount && board.colourOn[fromSquare(move)] == Us);
    const PlyRecord& before = board.plyRecords[board.ply];
    const Keys keys = make<Us, Track::Game>(board, move, undo, {before.key, before.pawnKey});
    PlyRecord& after = board.plyRecords[++board.ply];
    after.key = keys.key;
    after.pawnKey = keys.pawnKey;
    after.repetitions = 0;
    assert(isConsistent(board));
}

template <Colour Us>
void unmakeMove(Board_0x88& board, Move move, const UndoRecord& undo) {
    unmake<Us, Track::Game>(board, move, undo);
    --board.ply;
    assert(isConsistent(board));
}

template <Colour Us>
void makeMovePerft(Board_0x88& board, Move move, UndoRecord& undo) {
    assert(board.perftPly + 1 < PerftKeyCount);
    const Keys keys =
        make<Us, Track::Perft>(board, move, undo, {board.perftKeys[board.perftPly], 0});
    board.perftKeys[++board.perftPly] = keys.key;
}

template <Colour Us>
void unmakeMovePerft(Board_0x88& board, Move move, const UndoRecord& undo) {
    unmake<Us, Track::Perft>(board, move, undo);
    --board.perftPly;
}

template void makeMove<White>(Board_0x88&, Move, UndoRecord&);
template void makeMove<Black>(Board_0x88&, Move, UndoRecord&);
template void unmakeMove<White>(Board_0x88&, Move, const UndoRecord&);
template void unmakeMove<Black>(Board_0x88&, Move, const UndoRecord&);
template void makeMovePerft<White>(Board_0x88&, Move, UndoRecord&);
template void makeMovePerft<Black>(Board_0x88&, Move, UndoRecord&);
template void unmakeMovePerft<White>(Board_0x88&, Move, const UndoRecord&);
template void unmakeMovePerft<Black>(Board_0x88&, Move, const UndoRecord&);

void makeMove(Board_0x88& board, Move move, UndoRecord& undo) {
    board.sideToMove == White ? makeMove<White>(board, move, undo)
                              : makeMove<Black>(board, move, undo);
}

void unmakeMove(Board_0x88& board, Move move, const UndoRecord& undo) {
    board.sideToMove == White ? unmakeMove<Black>(board, move, undo)
                              : unmakeMove<White>(board, move, undo);
}

void makeMovePerft(Board_0x88& board, Move move, UndoRecord& undo) {
    board.sideToMove == White ? makeMovePerft<White>(board, move, undo)
                              : makeMovePerft<Black>(board, move, undo);
}

void unmakeMovePerft(Board_0x88& board, Move move, const UndoRecord& undo) {
    board.sideToMove == White ? unmakeMovePerft<Black>(board, move, undo)
                              : unmakeMovePerft<White>(board, move, undo);
}

void makeNullMove(Board_0x88& board, NullUndo& undo) {
    PlyRecord& before = board.plyRecords[board.ply];
    PlyRecord& after = board.plyRecords[board.ply + 1];
    before.movePlayed = NoMove;
    after.key = before.key ^ zobrist.side;
    after.pawnKey = before.pawnKey;
    after.repetitions = 0;
    ++board.ply;
    undo = {board.castlingRights, board.epSquare, board.halfmoveClock};
    if (board.epSquare != NoSquare) after.key ^= zobrist.epFile[fileOf(board.epSquare)];
    board.sideToMove = ~board.toMove();
    board.halfmoveClock = 0;
    board.epSquare = NoSquare;
}

void unmakeNullMove(Board_0x88& board, const NullUndo& undo) {
    board.sideToMove = ~board.toMove();
    --board.ply;
    board.castlingRights = undo.castlingRights;
    board.epSquare = undo.epSquare;
    board.halfmoveClock = undo.halfmoveClock;
}

}  // namespace vatro
