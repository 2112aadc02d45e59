// board/move_generation.cpp - generation of legal moves.
#include "board/move_generation.h"

#include <algorithm>
#include <string>

#include "board/move_generator.h"

namespace vatro {
namespace {

/// Appends moves to a list.
struct ListSink {
    MoveList& list;

    void addPawnStep(Square64 from, Square64 to, unsigned extra) {
        list.add(makeMoveWord(from, to, Normal, extra));
    }
    void addPawnCapture(Square64 from, Square64 to) { list.add(makeMoveWord(from, to)); }
    void addEnPassant(Square64 from, Square64 to) { list.add(makeMoveWord(from, to, EnPassant)); }
    void addCastling(Square64 from, Square64 to, unsigned castling) {
        list.add(makeMoveWord(from, to, Castling, castling));
    }
    void addPromotions(Square64 from, Square64 to, MoveSet wanted) {
        list.add(makePromotion(from, to, Queen));
        if (wanted == MoveSet::Captures) return;
        for (const PieceType piece : {Knight, Rook, Bishop}) {
            list.add(makePromotion(from, to, piece));
        }
    }
    void addTargets(PieceType, Square64 from, SquareMask targets, const StepOrder& order) {
        for (int i = 0; i < order.count; ++i) {
            if (contains(targets, order.target(i))) list.add(makeMoveWord(from, order.target(i)));
        }
    }
    void addSliding(PieceType, Square64 from, SquareMask targets, int firstRay) {
        forEachOnRays(from, targets, firstRay,
                      [&](Square64 to) { list.add(makeMoveWord(from, to)); });
    }
};

/// Counts moves without listing them.
struct CountSink {
    unsigned count = 0;

    void addPawnStep(Square64, Square64, unsigned) { ++count; }
    void addPawnCapture(Square64, Square64) { ++count; }
    void addEnPassant(Square64, Square64) { ++count; }
    void addCastling(Square64, Square64, unsigned) { ++count; }
    void addPromotions(Square64, Square64, MoveSet) { count += 4; }
    void addTargets(PieceType, Square64, SquareMask targets, const StepOrder&) { add(targets); }
    void addSliding(PieceType, Square64, SquareMask targets, int) { add(targets); }

  private:
    void add(SquareMask targets) { count += static_cast<unsigned>(countSquares(targets)); }
};

/// Stops at the second move.
struct SeveralSink : CountSink {
    bool hasEnough() const { return count > 1; }
};

}  // namespace

template <Colour Us>
void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    ListSink sink{list};
    Generator<Us, MoveSet::All, ListSink>(board, info, sink).generate();
}

template <Colour Us>
unsigned countLegalMoves(const Board_0x88& board, const PinInfo& info) {
    CountSink sink;
    Generator<Us, MoveSet::All, CountSink>(board, info, sink).generate();
    return std::min(sink.count, MoveList::Capacity);
}

template <Colour Us>
[[gnu::noinline]] bool hasOnlyOneLegalMove(const Board_0x88& board, const PinInfo& info) {
    SeveralSink sink;
    Generator<Us, MoveSet::All, SeveralSink>(board, info, sink).generate();
    return sink.count == 1;
}

template <Colour Us>
bool isCheckmated(const Board_0x88& board) {
    const SquareMask checkers = findCheckers<Us>(board);
    return checkers && countLegalMoves<Us>(board, computePins<Us>(board, checkers)) == 0;
}

template void generateLegalMoves<White>(const Board_0x88&, const PinInfo&, MoveList&);
template void generateLegalMoves<Black>(const Board_0x88&, const PinInfo&, MoveList&);
template unsigned countLegalMoves<White>(const Board_0x88&, const PinInfo&);
template unsigned countLegalMoves<Black>(const Board_0x88&, const PinInfo&);
template bool isCheckmated<White>(const Board_0x88&);
template bool isCheckmated<Black>(const Board_0x88&);
template bool hasOnlyOneLegalMove<White>(const Board_0x88&, const PinInfo&);
template bool hasOnlyOneLegalMove<Black>(const Board_0x88&, const PinInfo&);

void generateLegalMoves(const Board_0x88& board, const PinInfo& info, MoveList& list) {
    board.sideToMove == White ? generateLegalMoves<White>(board, info, list)
                              : generateLegalMoves<Black>(board, info, list);
}

void generateLegalMoves(const Board_0x88& board, MoveList& list) {
    generateLegalMoves(board, computePins(board), list);
}

Move findLegalMove(const Board_0x88& board, std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    MoveList list;
    generateLegalMoves(board, list);
    const auto* const found = std::find_if(
        list.begin(), list.end(),
        [&lower](const ScoredMove& entry) { return moveToText(entry.move()) == lower; });
    return found == list.end() ? NoMove : found->move();
}

unsigned countLegalMoves(const Board_0x88& board) {
    const PinInfo info = computePins(board);
    return board.sideToMove == White ? countLegalMoves<White>(board, info)
                                     : countLegalMoves<Black>(board, info);
}

}  // namespace vatro
