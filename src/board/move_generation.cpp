// src/board/move_generation.cpp - generation of legal moves.
#include "board/move_generation.h"

#include <algorithm>
#include <cstdlib>

#include "board/move_generator.h"

namespace vatro {
namespace {

/// Appends moves to a list.
struct ListSink {
    MoveList& list;

    void addPawnStep(int from, int to, unsigned extra) {
        list.add(makeMoveWord(from, to, Normal, extra));
    }
    void addPawnCapture(int from, int to) { list.add(makeMoveWord(from, to)); }
    void addEnPassant(int from, int to) { list.add(makeMoveWord(from, to, EnPassant)); }
    void addCastling(int from, int to, unsigned kind) {
        list.add(makeMoveWord(from, to, Castling, kind));
    }
    void addPromotions(int from, int to, Kind kind) {
        list.add(makePromotion(from, to, Queen));
        if (kind == Kind::Captures) return;
        for (const PieceType piece : {Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, piece));
        }
    }
    void addTargets(PieceType, int from, SquareMask targets, const StepOrder& order) {
        for (int i = 0; i < order.count; ++i) {
            if ((targets >> order.targets[i]) & 1) list.add(makeMoveWord(from, order.targets[i]));
        }
    }
    void addSliding(PieceType, int from, SquareMask targets, int firstRay) {
        forEachOnRays(from, targets, firstRay, [&](int to) { list.add(makeMoveWord(from, to)); });
    }
};

/// Counts moves without listing them.
struct CountSink {
    unsigned count = 0;

    void addPawnStep(int, int, unsigned) { ++count; }
    void addPawnCapture(int, int) { ++count; }
    void addEnPassant(int, int) { ++count; }
    void addCastling(int, int, unsigned) { ++count; }
    void addPromotions(int, int, Kind) { count += 4; }
    void addTargets(PieceType, int, SquareMask targets, const StepOrder&) { add(targets); }
    void addSliding(PieceType, int, SquareMask targets, int) { add(targets); }

  private:
    void add(SquareMask targets) { count += static_cast<unsigned>(countSquares(targets)); }
};

/// Counts no further than it takes to see that a move is not the only one.
struct SeveralSink : CountSink {
    bool hasEnough() const { return count > 1; }
};

/// Notes which piece can go where, so that one move can be written out without the others.
class GroupSink {
  public:
    void addPawnStep(int from, int to, unsigned extra) {
        addMove(makeMoveWord(from, to, Normal, extra));
    }
    void addPawnCapture(int from, int to) { addMove(makeMoveWord(from, to)); }
    void addEnPassant(int from, int to) { addMove(makeMoveWord(from, to, EnPassant)); }
    void addCastling(int from, int to, unsigned kind) {
        addMove(makeMoveWord(from, to, Castling, kind));
    }
    void addPromotions(int from, int to, Kind) {
        groups[count++] = {0, nullptr, makePromotion(from, to, Queen), 0, 0, total += 4};
    }
    void addTargets(PieceType, int from, SquareMask targets, const StepOrder& order) {
        total += static_cast<unsigned>(countSquares(targets));
        groups[count++] = {targets, &order, NoMove, from, 0, total};
    }
    void addSliding(PieceType, int from, SquareMask targets, int firstRay) {
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
            sink.addTargets(NoPiece, group->from, group->targets, *group->order);
        } else {
            sink.addSliding(NoPiece, group->from, group->targets, group->firstRay);
        }
        return list.moves[index - before].move;
    }

  private:
    struct Group {
        SquareMask targets;      // empty: only `first`, or the four promotions that it stands for
        const StepOrder* order;  // of a stepping piece's targets; nullptr: a sliding piece's
        Move first;
        int from;
        int firstRay;
        unsigned end;  // number of moves up to and with this group
    };

    void addMove(Move move) { groups[count++] = {0, nullptr, move, 0, 0, total += 1}; }

    // Per piece at most four groups (a pawn's targets); two en-passant captures, two castlings.
    Group groups[4 * SlotCount + 4];
    unsigned count = 0;
    unsigned total = 0;
};

}  // namespace

template <Colour Us>
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    ListSink sink{list};
    Generator<Us, Kind::All, ListSink>(board, info, sink).generate();
}

template <Colour Us>
unsigned countLegalMoves(const Board_0x88& board, const PinInfo& info) {
    CountSink sink;
    Generator<Us, Kind::All, CountSink>(board, info, sink).generate();
    return std::min(sink.count, MoveList::Capacity);
}

template <Colour Us>
[[gnu::noinline]] bool hasOnlyOneLegalMove(const Board_0x88& board, const PinInfo& info) {
    SeveralSink sink;
    Generator<Us, Kind::All, SeveralSink>(board, info, sink).generate();
    return sink.count == 1;
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
template unsigned countLegalMoves<White>(const Board_0x88&, const PinInfo&);
template unsigned countLegalMoves<Black>(const Board_0x88&, const PinInfo&);
template bool hasOnlyOneLegalMove<White>(const Board_0x88&, const PinInfo&);
template bool hasOnlyOneLegalMove<Black>(const Board_0x88&, const PinInfo&);
template Move drawLegalMove<White>(const Board_0x88&);
template Move drawLegalMove<Black>(const Board_0x88&);

void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    board.sideToMove == White ? generateLegalMoves<White>(board, info, list)
                              : generateLegalMoves<Black>(board, info, list);
}

void generateLegalMoves(const Board_0x88& board, MoveList& list) {
    generateLegalMoves(board, computePins(board), list);
}

unsigned countLegalMoves(const Board_0x88& board) {
    const PinInfo info = computePins(board);
    return board.sideToMove == White ? countLegalMoves<White>(board, info)
                                     : countLegalMoves<Black>(board, info);
}

Move drawLegalMove(const Board_0x88& board) {
    return board.sideToMove == White ? drawLegalMove<White>(board) : drawLegalMove<Black>(board);
}

}  // namespace vatro
