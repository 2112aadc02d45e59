// src/board/move_generation.cpp - generation of legal moves.
//
// Every move is proved legal before it is listed: a piece that is neither pinned nor answering a
// check needs no proof, the others may go only where the line to their king allows.
#include "board/move_generation.h"

#include <algorithm>
#include <cstdlib>

namespace vatro {
namespace {

enum class Kind { All, Captures };

/// Appends moves to a list.
struct ListSink {
    MoveList& list;

    void add(Move move) { list.add(move); }
    void addPromotions(int from, int to, Kind kind) {
        list.add(makePromotion(from, to, Queen));
        if (kind == Kind::Captures) return;
        for (const PieceType piece : {Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, piece));
        }
    }
    void addTargets(int from, SquareMask targets, const Square* order, int count) {
        for (int i = 0; i < count; ++i) {
            if ((targets >> order[i]) & 1) list.add(makeMoveWord(from, order[i]));
        }
    }
    /// Sliding targets: ray by ray, nearest first.
    void addSliding(int from, SquareMask targets, int firstRay) {
        for (int ray = firstRay; ray < firstRay + 4; ++ray) {
            const Ray& beyond = slidingRays[ray][from];
            SquareMask onRay = targets & beyond.squares;
            while (onRay) {
                const int to = beyond.ascending ? lowestSquare(onRay) : highestSquare(onRay);
                onRay ^= maskOf(to);
                list.add(makeMoveWord(from, to));
            }
        }
    }
};

/// Counts moves without listing them.
struct CountSink {
    unsigned count = 0;

    void add(Move) { ++count; }
    void addPromotions(int, int, Kind) { count += 4; }
    void addTargets(int, SquareMask targets, const Square*, int) { addSliding(0, targets, 0); }
    void addSliding(int, SquareMask targets, int) {
        count += static_cast<unsigned>(countSquares(targets));
    }
};

/// Notes which piece can go where, so that one move can be written out without the others.
class GroupSink {
  public:
    void add(Move move) { groups[count++] = {0, nullptr, move, 0, 0, total += 1}; }
    void addPromotions(int from, int to, Kind) {
        groups[count++] = {0, nullptr, makePromotion(from, to, Queen), 0, 0, total += 4};
    }
    void addTargets(int from, SquareMask targets, const Square* order, int length) {
        total += static_cast<unsigned>(countSquares(targets));
        groups[count++] = {targets, order, NoMove, from, length, total};
    }
    void addSliding(int from, SquareMask targets, int firstRay) {
        total += static_cast<unsigned>(countSquares(targets));
        groups[count++] = {targets, nullptr, NoMove, from, firstRay, total};
    }

    unsigned size() const { return std::min(total, MoveList::Capacity); }
    /// The move at an index below `size`.
    Move at(unsigned index) const {
        const Group* group = groups;
        unsigned before = 0;
        for (; index >= group->end; ++group) {
            before = group->end;
        }
        if (!group->targets && group->end == before + 1) return group->first;
        MoveList list;
        ListSink sink{list};
        if (!group->targets) {
            sink.addPromotions(from64(group->first), to64(group->first), Kind::All);
        } else if (group->order) {
            sink.addTargets(group->from, group->targets, group->order, group->firstRayOrLength);
        } else {
            sink.addSliding(group->from, group->targets, group->firstRayOrLength);
        }
        return list.moves[index - before].move;
    }

  private:
    struct Group {
        SquareMask targets;   // empty: only `first`, or the four promotions that it stands for
        const Square* order;  // of a stepping piece's targets; nullptr: they are a sliding piece's
        Move first;
        int from;
        int firstRayOrLength;  // of `order`
        unsigned end;          // number of moves up to and with this group
    };

    // Per piece at most four groups (a pawn's targets); two en-passant captures, two castlings.
    Group groups[4 * SlotCount + 4];
    unsigned count = 0;
    unsigned total = 0;
};

/// The targets of a stepping piece from each square, in generation order.
struct StepOrder {
    Square targets[8];
    std::uint8_t count;
};
using StepOrders = std::array<StepOrder, 64>;

constexpr StepOrders buildStepOrders(const int (&offsets)[8]) {
    StepOrders orders{};
    for (int sq64 = 0; sq64 < 64; ++sq64) {
        for (const int offset : offsets) {
            const int to = toSquare(sq64) + offset;
            if (!isOnBoard(to)) continue;
            orders[sq64].targets[orders[sq64].count++] = static_cast<Square>(toSq64(to));
        }
    }
    return orders;
}
constexpr StepOrders knightOrder = buildStepOrders(knightOffsets);
constexpr StepOrders kingOrder = buildStepOrders(kingNeighbours);

template <Colour Us, Kind K, typename Sink>
class Generator {
  public:
    Generator(const Board_0x88& position, const PinInfo& pins, Sink& out)
        : board(position),
          info(pins),
          sink(out),
          own(position.pieceMask[Us][NoPiece]),
          enemies(position.pieceMask[S::Them][NoPiece]),
          king(position.hasKing(Us) ? toSq64(position.kingSquare(Us)) : NoKing) {
        if (!info.inCheck()) {
            evasions = ~SquareMask{0};
        } else if (info.checkers & (info.checkers - 1)) {
            evasions = 0;  // double check: only the king can move
        } else {
            evasions = info.checkers | squaresBetween[king][lowestSquare(info.checkers)];
        }
    }

    void generate() {
        addEnPassant();
        const PieceList& list = board.pieceLists[Us];
        for (const Square square : list.squares) {
            if (square != NoSquare) addPieceMoves(square);
        }
        if constexpr (K == Kind::All) {
            if (!info.inCheck() && board.castlingRights) addCastling();
        }
    }

  private:
    using S = Side<Us>;
    static constexpr int NoKing = -1;

    void addPieceMoves(Square square) {
        const int from = toSq64(square);
        const PieceType type = board.pieceAt(square);
        if (type == King) return addKingMoves(from);
        const SquareMask allowed = allowedFrom(from);
        if (type == Pawn) return addPawnMoves(square, allowed);
        const SquareMask targets = allowed & (K == Kind::Captures ? enemies : ~own);
        if (type == Knight) {
            const StepOrder& order = knightOrder[from];
            const SquareMask jumps = knightAttacks[from] & targets;
            if (jumps) sink.addTargets(from, jumps, order.targets, order.count);
            return;
        }
        const SquareMask occupied = own | enemies;
        if (type != Bishop) {
            const SquareMask reached = rookAttacks(from, occupied) & targets;
            if (reached) sink.addSliding(from, reached, FirstOrthogonalRay);
        }
        if (type != Rook) {
            const SquareMask reached = bishopAttacks(from, occupied) & targets;
            if (reached) sink.addSliding(from, reached, FirstDiagonalRay);
        }
    }

    /// Where a piece other than the king may go without leaving its king attacked.
    SquareMask allowedFrom(int from) const {
        if (!((info.pinned() >> from) & 1)) return evasions;
        return evasions & lineThrough[king][from];
    }

    void addKingMoves(int from) {
        const SquareMask withoutKing = (own | enemies) ^ maskOf(from);
        const SquareMask targets = kingAttacks[from] & (K == Kind::Captures ? enemies : ~own);
        if (!targets) return;
        const SquareMask safe = targets & ~attackedSquares(withoutKing);
        const StepOrder& order = kingOrder[from];
        if (safe) sink.addTargets(from, safe, order.targets, order.count);
    }

    /// All squares that the enemies attack. Their few pieces are walked sooner than the many
    /// squares around a king.
    SquareMask attackedSquares(SquareMask occupied) const {
        const SquareMask* theirs = board.pieceMask[S::Them];
        constexpr SquareMask fileA = 0x0101010101010101ULL;
        const SquareMask pawns = theirs[Pawn];
        SquareMask attacked = S::Them == White
                                  ? ((pawns & ~fileA) << 7) | ((pawns & ~(fileA << 7)) << 9)
                                  : ((pawns & ~fileA) >> 9) | ((pawns & ~(fileA << 7)) >> 7);
        if (theirs[King]) attacked |= kingAttacks[lowestSquare(theirs[King])];
        for (SquareMask left = theirs[Knight]; left; left &= left - 1) {
            attacked |= knightAttacks[lowestSquare(left)];
        }
        for (SquareMask left = theirs[Rook] | theirs[Queen]; left; left &= left - 1) {
            attacked |= rookAttacks(lowestSquare(left), occupied);
        }
        for (SquareMask left = theirs[Bishop] | theirs[Queen]; left; left &= left - 1) {
            attacked |= bishopAttacks(lowestSquare(left), occupied);
        }
        return attacked;
    }

    void addPawnMoves(Square square, SquareMask allowed) {
        const int from = toSq64(square);
        const bool promotes = rankOf(square) == S::SeventhRank;
        for (const int step : {S::CaptureFirst, S::CaptureSecond}) {
            const int to = square + step;
            if (isOnBoard(to) && board.colourOn[to] == S::Them)
                addPawnMove(from, to, allowed, promotes);
        }
        if (K == Kind::Captures && !promotes) return;
        const int one = square + S::Up;
        if (!isOnBoard(one) || board.pieceOn[one] != NoPiece) return;
        addPawnMove(from, one, allowed, promotes);
        if (rankOf(square) != S::DoubleStepRank) return;
        const int two = one + S::Up;
        if (board.pieceOn[two] == NoPiece && ((allowed >> toSq64(two)) & 1)) {
            sink.add(makeMoveWord(from, toSq64(two), Normal, DoubleStep));
        }
    }

    void addPawnMove(int from, int toSquare0x88, SquareMask allowed, bool promotes) {
        const int to = toSq64(toSquare0x88);
        if (!((allowed >> to) & 1)) return;
        if (promotes) {
            sink.addPromotions(from, to, K);
        } else {
            sink.add(makeMoveWord(from, to));
        }
    }

    // Two pawns leave one rank at once, so pins do not tell: the position after is looked at.
    void addEnPassant() {
        if (board.epSquare == NoSquare) return;
        const int to = toSq64(board.epSquare);
        const SquareMask victim = maskOf(toSq64(board.epSquare - S::Up));
        for (const int step : {S::CaptureFirst, S::CaptureSecond}) {
            const int from = board.epSquare - step;
            if (!isOnBoard(from) || board.pieceOn[from] != Pawn || board.colourOn[from] != Us) {
                continue;
            }
            const SquareMask occupied =
                ((own | enemies) & ~victim & ~maskOf(toSq64(from))) | maskOf(to);
            if (king == NoKing || !(attackersOf<S::Them>(board, king, occupied) & ~victim)) {
                sink.add(makeMoveWord(toSq64(from), to, EnPassant));
            }
        }
    }

    void addCastling() {
        if (king != toSq64(S::KingHome)) return;  // rights outlive a captured king
        constexpr SquareMask kingSidePath =
            maskOf(toSq64(S::home(F1))) | maskOf(toSq64(S::home(G1)));
        constexpr SquareMask queenSidePath =
            maskOf(toSq64(S::home(D1))) | maskOf(toSq64(S::home(C1))) | maskOf(toSq64(S::home(B1)));
        constexpr unsigned kingSideKind = Us == White ? 0 : 2;
        addCastling(S::KingSide, kingSidePath, S::home(F1), S::home(G1), kingSideKind);
        addCastling(S::QueenSide, queenSidePath, S::home(D1), S::home(C1), kingSideKind + 1);
    }

    void addCastling(
        CastlingRight right, SquareMask path, Square passed, Square target, unsigned kind) {
        const SquareMask occupied = own | enemies;
        if (!(board.castlingRights & right) || (path & occupied)) return;
        if (attackersOf<S::Them>(board, toSq64(passed), occupied) ||
            attackersOf<S::Them>(board, toSq64(target), occupied)) {
            return;
        }
        sink.add(makeMoveWord(king, toSq64(target), Castling, kind));
    }

    const Board_0x88& board;
    const PinInfo& info;
    Sink& sink;
    SquareMask own;
    SquareMask enemies;
    int king;             // sq64
    SquareMask evasions;  // where a move other than the king's answers the check, if there is one
};

}  // namespace

template <Colour Us>
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    ListSink sink{list};
    Generator<Us, Kind::All, ListSink>(board, info, sink).generate();
}

template <Colour Us>
void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    ListSink sink{list};
    Generator<Us, Kind::Captures, ListSink>(board, info, sink).generate();
}

template <Colour Us>
unsigned countLegalMoves(const Board_0x88& board) {
    CountSink sink;
    const PinInfo info = computePins<Us>(board, findCheckers<Us>(board));
    Generator<Us, Kind::All, CountSink>(board, info, sink).generate();
    return std::min(sink.count, MoveList::Capacity);
}

template <Colour Us>
Move drawLegalMove(const Board_0x88& board) {
    GroupSink sink;
    const PinInfo info = computePins<Us>(board, findCheckers<Us>(board));
    Generator<Us, Kind::All, GroupSink>(board, info, sink).generate();
    if (sink.size() == 0) return NoMove;
    return sink.at((static_cast<unsigned>(std::rand()) & 0x7FFFFFFFU) % sink.size());
}

template void generateLegalMoves<White>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateLegalMoves<Black>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateCaptures<White>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateCaptures<Black>(const Board_0x88&, const PinInfo&, MoveList&);
template unsigned countLegalMoves<White>(const Board_0x88&);
template unsigned countLegalMoves<Black>(const Board_0x88&);
template Move drawLegalMove<White>(const Board_0x88&);
template Move drawLegalMove<Black>(const Board_0x88&);

void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    board.sideToMove == White ? generateLegalMoves<White>(board, info, list)
                              : generateLegalMoves<Black>(board, info, list);
}

void generateLegalMoves(const Board_0x88& board, MoveList& list) {
    generateLegalMoves(board, computePins(board), list);
}

void generateCaptures(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    board.sideToMove == White ? generateCaptures<White>(board, info, list)
                              : generateCaptures<Black>(board, info, list);
}

unsigned countLegalMoves(const Board_0x88& board) {
    return board.sideToMove == White ? countLegalMoves<White>(board)
                                     : countLegalMoves<Black>(board);
}

Move drawLegalMove(const Board_0x88& board) {
    return board.sideToMove == White ? drawLegalMove<White>(board) : drawLegalMove<Black>(board);
}

}  // namespace vatro
