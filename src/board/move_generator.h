// board/move_generator.h - generates legal moves, in a fixed order, for a sink.
//
// A sink lists, scores or counts the moves; only code that defines one needs this header. Illegal
// moves are never produced: in check only squares that answer it are allowed, a pinned piece stays
// on the line to its king, and what pins do not show (the king's moves, en passant) is tested by
// attacks.
#pragma once

#include <array>

#include "board/attacks.h"
#include "board/move.h"

namespace vatro {

/// What is generated: all legal moves, or captures and promotions to a queen.
enum class MoveSet { All, Captures };

/// The targets of a stepping piece from each square, in generation order.
struct StepOrder {
    std::uint8_t targets[8];  // bytes keep the tables small
    std::uint8_t count;

    Square64 target(int index) const { return static_cast<Square64>(targets[index]); }
};
using StepOrders = std::array<StepOrder, 64>;

constexpr StepOrders buildStepOrders(const int (&offsets)[8]) {
    StepOrders orders{};
    for (const Square64 from : allSquares) {
        for (const int offset : offsets) {
            const Square to = as88(from) + offset;
            if (!isOnBoard(to)) continue;
            orders[from].targets[orders[from].count++] = static_cast<std::uint8_t>(as64(to));
        }
    }
    return orders;
}
inline constexpr StepOrders knightOrder = buildStepOrders(knightOffsets);
inline constexpr StepOrders kingOrder = buildStepOrders(kingNeighbours);

/// Calls `visit` for each target of a sliding piece: ray by ray, nearest first.
template <typename Visit>
inline void forEachOnRays(Square64 from, SquareMask targets, int firstRay, Visit visit) {
    for (int ray = firstRay; ray < firstRay + 4; ++ray) {
        const Ray& beyond = slidingRays[ray][from];
        SquareMask onRay = targets & beyond.squares;
        while (onRay) {
            const Square64 to = beyond.ascending ? lowestSquare(onRay) : highestSquare(onRay);
            onRay ^= maskOf(to);
            visit(to);
        }
    }
}

/// The squares that pawns of a colour attack from any of `squares`.
template <Colour Us>
constexpr SquareMask pawnReach(SquareMask squares) {
    return Us == White ? ((squares & ~FileA) << 7) | ((squares & ~FileH) << 9)
                       : ((squares & ~FileA) >> 9) | ((squares & ~FileH) >> 7);
}

template <Colour Us, MoveSet Wanted, typename Sink>
class Generator {
  public:
    Generator(const Board_0x88& position, const PinInfo& pins, Sink& out)
        : Generator(position, pins, out, position.pieceMask[Side<Us>::Them][NoPiece]) {}
    /// Captures only on the squares of `victims`, apart from en passant.
    Generator(const Board_0x88& position, const PinInfo& pins, Sink& out, SquareMask victims)
        : board(position),
          info(pins),
          sink(out),
          own(position.pieceMask[Us][NoPiece]),
          enemies(position.pieceMask[S::Them][NoPiece]),
          capturable(victims & enemies),
          king(position.hasKing(Us) ? as64(position.kingSquare(Us)) : NoSquare64) {
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
        addFromHomeSlots<King>();
        addFromHomeSlots<Queen>();
        addFromHomeSlots<Rook>();
        addFromHomeSlots<Bishop>();
        addFromHomeSlots<Knight>();
        if (board.pieceLists[Us].counts[PieceList::Surplus] == 0) {
            addAllPawns();
        } else {
            addPawnsAndSurplus();
        }
        if constexpr (Wanted == MoveSet::All) {
            if (!info.inCheck() && (board.castlingRights & S::Castlings) && !hasEnough())
                addCastling();
        }
    }

  private:
    using S = Side<Us>;

    /// True when the sink needs no more moves. Sinks without such a function want them all.
    bool hasEnough() const {
        if constexpr (requires { sink.hasEnough(); }) {
            return sink.hasEnough();
        } else {
            return false;
        }
    }

    SquareMask wantedTargets() const { return Wanted == MoveSet::Captures ? capturable : ~own; }

    /// The pieces in the slots of their type. Slots are visited in ascending order.
    template <PieceType Type>
    void addFromHomeSlots() {
        constexpr SlotRule rule = slotRules[Type];
        for (int slot = rule.firstSlot; slot <= rule.lastSlot; ++slot) {
            const Square square = board.pieceLists[Us].squares[slot];
            if (hasEnough()) return;
            if (square != NoSquare) addMovesOf<Type>(as64(square));
        }
    }

    void addAllPawns() {
        const PieceList& list = board.pieceLists[Us];
        if constexpr (Wanted == MoveSet::Captures) {
            // Few pawns capture or promote; they are visited in the order of their slots.
            unsigned slots = 0;
            for (SquareMask left = activePawns(); left; left &= left - 1) {
                slots |= 1U << board.slotOn[as88(lowestSquare(left))];
            }
            for (; slots; slots &= slots - 1)
                addPawnMoves(list.squares[std::countr_zero(slots)]);
        } else {
            for (int slot = FirstPawnSlot; slot < SlotCount && !hasEnough(); ++slot) {
                if (list.squares[slot] != NoSquare) addPawnMoves(list.squares[slot]);
            }
        }
    }

    /// The pawns that can capture or stand before their promotion.
    SquareMask activePawns() const {
        const SquareMask pawns = board.pieceMask[Us][Pawn];
        constexpr SquareMask seventhRank = SquareMask{0xFF} << (8 * S::SeventhRank);
        return pawns & (pawnReach<S::Them>(capturable) | seventhRank);
    }

    [[gnu::noinline]] void addPawnsAndSurplus() {
        for (int slot = FirstPawnSlot; slot < SlotCount; ++slot) {
            const Square square = board.pieceLists[Us].squares[slot];
            if (square == NoSquare) continue;
            const Square64 from = as64(square);
            switch (board.pieceAt(square)) {
                case Pawn:
                    addPawnMoves(square);
                    break;
                case Knight:
                    addMovesOf<Knight>(from);
                    break;
                case Bishop:
                    addMovesOf<Bishop>(from);
                    break;
                case Rook:
                    addMovesOf<Rook>(from);
                    break;
                case Queen:
                    addMovesOf<Queen>(from);
                    break;
                case King:
                case NoPiece:
                    break;
            }
        }
    }

    template <PieceType Type>
    void addMovesOf(Square64 from) {
        if constexpr (Type == Knight) {
            addSteps(Knight, from, knightAttacks[from] & wantedTargets() & allowedFrom(from),
                     knightOrder[from]);
        }
        if constexpr (Type == King) {
            addSteps(King, from, safeForKing(from, kingAttacks[from] & wantedTargets()),
                     kingOrder[from]);
        }
        if constexpr (Type == Rook || Type == Queen) addOrthogonal(Type, from);
        if constexpr (Type == Bishop || Type == Queen) addDiagonal(Type, from);
    }

    void addSteps(PieceType type, Square64 from, SquareMask targets, const StepOrder& order) {
        if (targets) sink.addTargets(type, from, targets, order);
    }

    void addOrthogonal(PieceType type, Square64 from) {
        if (!(rookRays[from] & wantedTargets())) return;
        const SquareMask reached =
            rookAttacks(from, own | enemies) & wantedTargets() & allowedFrom(from);
        if (reached) sink.addSliding(type, from, reached, FirstOrthogonalRay);
    }

    void addDiagonal(PieceType type, Square64 from) {
        if (!(bishopRays[from] & wantedTargets())) return;
        const SquareMask reached =
            bishopAttacks(from, own | enemies) & wantedTargets() & allowedFrom(from);
        if (reached) sink.addSliding(type, from, reached, FirstDiagonalRay);
    }

    /// Where a piece other than the king may go without leaving its king attacked.
    SquareMask allowedFrom(Square64 from) const {
        if (!contains(info.pinned(), from)) return evasions;
        return evasions & lineThrough[king][from];
    }

    /// The squares of `targets` that the enemies do not attack once the king has left its own.
    SquareMask safeForKing(Square64 from, SquareMask targets) const {
        constexpr int FewTargets = 3;  // for so many, asking about each square is faster; measured
        const SquareMask withoutKing = (own | enemies) ^ maskOf(from);
        if (countSquares(targets) > FewTargets) return targets & ~attackedSquares(withoutKing);
        SquareMask safe = targets;
        for (SquareMask left = targets; left; left &= left - 1) {
            const Square64 to = lowestSquare(left);
            if (attackersOf<S::Them>(board, to, withoutKing)) safe ^= maskOf(to);
        }
        return safe;
    }

    /// All squares that the enemies attack.
    SquareMask attackedSquares(SquareMask occupied) const {
        const SquareMask* theirs = board.pieceMask[S::Them];
        SquareMask attacked = pawnReach<S::Them>(theirs[Pawn]);
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

    void addPawnMoves(Square square) {
        const Square64 from = as64(square);
        const bool promotes = rankOf(square) == S::SeventhRank;
        const SquareMask captures = pawnAttacks[Us][from] & capturable;
        if (Wanted == MoveSet::Captures && !promotes && !captures) return;
        const SquareMask allowed = allowedFrom(from);
        if (captures & allowed) {
            addPawnCapture(square, square + S::CaptureFirst, captures & allowed, promotes);
            addPawnCapture(square, square + S::CaptureSecond, captures & allowed, promotes);
        }
        if (Wanted == MoveSet::Captures && !promotes) return;
        const Square one = square + S::Up;
        if (!isOnBoard(one) || board.pieceOn[one] != NoPiece) return;
        if (contains(allowed, as64(one))) addPawnMove(from, as64(one), promotes);
        if (rankOf(square) != S::DoubleStepRank) return;
        const Square two = one + S::Up;
        if (board.pieceOn[two] == NoPiece && contains(allowed, as64(two))) {
            sink.addPawnStep(from, as64(two), DoubleStep);
        }
    }

    void addPawnCapture(Square square, Square to, SquareMask captures, bool promotes) {
        if (!isOnBoard(to) || !contains(captures, as64(to))) return;
        if (promotes) {
            sink.addPromotions(as64(square), as64(to), Wanted);
        } else {
            sink.addPawnCapture(as64(square), as64(to));
        }
    }

    void addPawnMove(Square64 from, Square64 to, bool promotes) {
        if (promotes) {
            sink.addPromotions(from, to, Wanted);
        } else {
            sink.addPawnStep(from, to, 0);
        }
    }

    // Two pawns leave a rank at once, which pins do not show; so attacks on the king are looked up
    // on the squares that are occupied after the capture.
    void addEnPassant() {
        if (board.epSquare == NoSquare) return;
        const Square64 to = as64(board.epSquare);
        const SquareMask victim = maskOf(board.epSquare - S::Up);
        for (const int step : {S::CaptureFirst, S::CaptureSecond}) {
            const Square from = board.epSquare - step;
            if (!isOnBoard(from) || board.pieceOn[from] != Pawn || board.colourOn[from] != Us) {
                continue;
            }
            const SquareMask occupied = ((own | enemies) & ~victim & ~maskOf(from)) | maskOf(to);
            if (king == NoSquare64 || !(attackersOf<S::Them>(board, king, occupied) & ~victim)) {
                sink.addEnPassant(as64(from), to);
            }
        }
    }

    void addCastling() {
        constexpr SquareMask kingSidePath = maskOf(S::home(F1)) | maskOf(S::home(G1));
        constexpr SquareMask queenSidePath =
            maskOf(S::home(D1)) | maskOf(S::home(C1)) | maskOf(S::home(B1));
        addCastling(S::KingSide, kingSidePath, S::home(F1), S::home(G1), S::KingSideCastling);
        addCastling(S::QueenSide, queenSidePath, S::home(D1), S::home(C1), S::QueenSideCastling);
    }

    void addCastling(
        CastlingRight right, SquareMask path, Square passed, Square target, unsigned castling) {
        const SquareMask occupied = own | enemies;
        if (!(board.castlingRights & right) || (path & occupied)) return;
        if (attackersOf<S::Them>(board, as64(passed), occupied) ||
            attackersOf<S::Them>(board, as64(target), occupied)) {
            return;
        }
        sink.addCastling(as64(S::KingHome), as64(target), castling);
    }

    const Board_0x88& board;
    const PinInfo& info;
    Sink& sink;
    SquareMask own;
    SquareMask enemies;
    SquareMask capturable;
    Square64 king;        // NoSquare64 without one
    SquareMask evasions;  // targets that answer the check; every square when there is none
};

}  // namespace vatro
