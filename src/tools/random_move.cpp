// tools/random_move.cpp - counting the moves in groups, then writing out one of them.
#include "tools/random_move.h"

#include <algorithm>

#include "board/move_generator.h"

namespace vatro {
namespace {

/// Notes which piece can go where; a group of moves is written out only if one of them is drawn.
class GroupSink {
  public:
    void addPawnStep(Square64 from, Square64 to, unsigned extra) {
        addMove(makeMoveWord(from, to, Normal, extra));
    }
    void addPawnCapture(Square64 from, Square64 to) { addMove(makeMoveWord(from, to)); }
    void addEnPassant(Square64 from, Square64 to) { addMove(makeMoveWord(from, to, EnPassant)); }
    void addCastling(Square64 from, Square64 to, unsigned castling) {
        addMove(makeMoveWord(from, to, Castling, castling));
    }
    void addPromotions(Square64 from, Square64 to, MoveSet) {
        groups[count++] = {0, nullptr, makePromotion(from, to, Queen), from, 0, total += 4};
    }
    void addTargets(PieceType, Square64 from, SquareMask targets, const StepOrder& order) {
        total += static_cast<unsigned>(countSquares(targets));
        groups[count++] = {targets, &order, NoMove, from, 0, total};
    }
    void addSliding(PieceType, Square64 from, SquareMask targets, int firstRay) {
        total += static_cast<unsigned>(countSquares(targets));
        groups[count++] = {targets, nullptr, NoMove, from, firstRay, total};
    }

    /// As many as a move list would hold.
    unsigned size() const { return std::min(total, MoveList::Capacity); }
    /// The move at an index below `size`.
    Move at(unsigned index) const {
        const Group* group = groups;
        unsigned before = 0;
        for (; index >= group->end; ++group) {
            before = group->end;
        }
        return moveOf(*group, index - before);
    }

  private:
    // Without initialisers: clearing all groups costs more than filling the few that are used.
    struct Group {
        SquareMask targets;      // empty: `first` alone, or the promotions of which it is the first
        const StepOrder* order;  // of a stepping piece's targets; nullptr for a sliding piece
        Move first;
        Square64 from;
        int firstRay;  // of a sliding piece's targets
        unsigned end;  // number of moves up to and with this group
    };

    static constexpr unsigned MaxTargets = 14;  // a rook's; a queen makes two groups

    static Move moveOf(const Group& group, unsigned index) {
        if (!group.targets) {
            constexpr PieceType order[] = {Queen, Knight, Rook, Bishop};
            if (index == 0) return group.first;
            return makePromotion(from64(group.first), to64(group.first), order[index]);
        }
        Square64 targets[MaxTargets];
        unsigned written = 0;
        if (group.order) {
            for (int i = 0; i < group.order->count; ++i) {
                const Square64 to = group.order->target(i);
                if (contains(group.targets, to)) targets[written++] = to;
            }
        } else {
            forEachOnRays(group.from, group.targets, group.firstRay,
                          [&](Square64 to) { targets[written++] = to; });
        }
        return makeMoveWord(group.from, targets[index]);
    }

    void addMove(Move move) { groups[count++] = {0, nullptr, move, from64(move), 0, total += 1}; }

    // A piece makes at most four groups (a pawn's targets); further, two en-passant captures and
    // two castlings.
    Group groups[4 * SlotCount + 4];
    unsigned count = 0;
    unsigned total = 0;
};

template <Colour Us>
Move draw(const Board_0x88& board, Random& random) {
    GroupSink sink;
    const PinInfo info = computePins<Us>(board, findCheckers<Us>(board));
    Generator<Us, MoveSet::All, GroupSink>(board, info, sink).generate();
    if (sink.size() == 0) return NoMove;
    return sink.at(random.below(sink.size()));
}

}  // namespace

Move drawLegalMove(const Board_0x88& board, Random& random) {
    return board.sideToMove == White ? draw<White>(board, random) : draw<Black>(board, random);
}

}  // namespace vatro
