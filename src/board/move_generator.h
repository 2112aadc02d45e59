// src/board/move_generator.h - the generator of legal moves, for whatever becomes of them.
//
// A sink receives the moves in their fixed order and lists, scores or counts them; this header is
// for the few places that define one. Every move is proved legal before it is handed out: a piece
// that is neither pinned nor answering a check needs no proof, the others may go only where the
// line to their king allows.
#pragma once

#include <array>

#include "board/attacks.h"
#include "board/move.h"

namespace vatro {

/// All legal moves, or captures and promotions to a queen.
enum class Kind { All, Captures };

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
inline constexpr StepOrders knightOrder = buildStepOrders(knightOffsets);
inline constexpr StepOrders kingOrder = buildStepOrders(kingNeighbours);

/// Calls `visit` for each target of a sliding piece: ray by ray, nearest first.
template <typename Visit>
inline void forEachOnRays(int from, SquareMask targets, int firstRay, Visit visit) {
    for (int ray = firstRay; ray < firstRay + 4; ++ray) {
        const Ray& beyond = slidingRays[ray][from];
        SquareMask onRay = targets & beyond.squares;
        while (onRay) {
            const int to = beyond.ascending ? lowestSquare(onRay) : highestSquare(onRay);
            onRay ^= maskOf(to);
            visit(to);
        }
    }
}

/// The squares that pawns of a colour attack from any of `squares`.
template <Colour Us>
constexpr SquareMask pawnReach(SquareMask squares) {
    constexpr SquareMask fileA = 0x0101010101010101ULL;
    constexpr SquareMask fileH = fileA << 7;
    return Us == White ? ((squares & ~fileA) << 7) | ((squares & ~fileH) << 9)
                       : ((squares & ~fileA) >> 9) | ((squares & ~fileH) >> 7);
}

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
        if constexpr (K == Kind::All) {
            if (!info.inCheck() && board.castlingRights && !hasEnough()) addCastling();
        }
    }

  private:
    using S = Side<Us>;
    static constexpr int NoKing = -1;

    /// True when the sink needs no more moves. Only some sinks ever say so.
    bool hasEnough() const {
        if constexpr (requires { sink.hasEnough(); }) {
            return sink.hasEnough();
        } else {
            return false;
        }
    }

    SquareMask wanted() const { return K == Kind::Captures ? enemies : ~own; }

    /// The pieces in the slots of their type. Slots are visited in ascending order.
    template <PieceType Type>
    void addFromHomeSlots() {
        constexpr SlotRule rule = slotRules[Type];
        for (int slot = rule.firstSlot; slot <= rule.lastSlot; ++slot) {
            const Square square = board.pieceLists[Us].squares[slot];
            if (hasEnough()) return;
            if (square != NoSquare) addMovesOf<Type>(toSq64(square));
        }
    }

    void addAllPawns() {
        const PieceList& list = board.pieceLists[Us];
        if constexpr (K == Kind::Captures) {
            // Few pawns capture or promote; their slots put them in order.
            unsigned slots = 0;
            for (SquareMask left = activePawns(); left; left &= left - 1) {
                slots |= 1U << board.slotOn[toSquare(lowestSquare(left))];
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
        return pawns & (pawnReach<S::Them>(enemies) | seventhRank);
    }

    [[gnu::noinline]] void addPawnsAndSurplus() {
        for (int slot = FirstPawnSlot; slot < SlotCount; ++slot) {
            const Square square = board.pieceLists[Us].squares[slot];
            if (square == NoSquare) continue;
            const int from = toSq64(square);
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
    void addMovesOf(int from) {
        if constexpr (Type == Knight) {
            addSteps(Knight, from, knightAttacks[from] & wanted() & allowedFrom(from),
                     knightOrder[from]);
        }
        if constexpr (Type == King) {
            addSteps(King, from, safeForKing(from, kingAttacks[from] & wanted()), kingOrder[from]);
        }
        if constexpr (Type == Rook || Type == Queen) addOrthogonal(Type, from);
        if constexpr (Type == Bishop || Type == Queen) addDiagonal(Type, from);
    }

    void addSteps(PieceType type, int from, SquareMask targets, const StepOrder& order) {
        if (targets) sink.addTargets(type, from, targets, order);
    }

    void addOrthogonal(PieceType type, int from) {
        if (!(rookRays[from] & wanted())) return;
        const SquareMask reached = rookAttacks(from, own | enemies) & wanted() & allowedFrom(from);
        if (reached) sink.addSliding(type, from, reached, FirstOrthogonalRay);
    }

    void addDiagonal(PieceType type, int from) {
        if (!(bishopRays[from] & wanted())) return;
        const SquareMask reached =
            bishopAttacks(from, own | enemies) & wanted() & allowedFrom(from);
        if (reached) sink.addSliding(type, from, reached, FirstDiagonalRay);
    }

    /// Where a piece other than the king may go without leaving its king attacked.
    SquareMask allowedFrom(int from) const {
        if (!((info.pinned() >> from) & 1)) return evasions;
        return evasions & lineThrough[king][from];
    }

    /// The squares of `targets` that the enemies do not attack once the king has left its own.
    SquareMask safeForKing(int from, SquareMask targets) const {
        constexpr int FewTargets = 3;  // up to here each is asked for alone; measured
        const SquareMask withoutKing = (own | enemies) ^ maskOf(from);
        if (countSquares(targets) > FewTargets) return targets & ~attackedSquares(withoutKing);
        SquareMask safe = targets;
        for (SquareMask left = targets; left; left &= left - 1) {
            const int to = lowestSquare(left);
            if (attackersOf<S::Them>(board, to, withoutKing)) safe ^= maskOf(to);
        }
        return safe;
    }

    /// All squares that the enemies attack. Their few pieces are walked sooner than the many
    /// squares around a king.
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
        const int from = toSq64(square);
        const bool promotes = rankOf(square) == S::SeventhRank;
        const SquareMask captures = pawnAttacks[Us][from] & enemies;
        if (K == Kind::Captures && !promotes && !captures) return;
        const SquareMask allowed = allowedFrom(from);
        if (captures & allowed) {
            addPawnCapture(square, square + S::CaptureFirst, captures & allowed, promotes);
            addPawnCapture(square, square + S::CaptureSecond, captures & allowed, promotes);
        }
        if (K == Kind::Captures && !promotes) return;
        const int one = square + S::Up;
        if (!isOnBoard(one) || board.pieceOn[one] != NoPiece) return;
        if ((allowed >> toSq64(one)) & 1) addPawnMove(from, toSq64(one), promotes);
        if (rankOf(square) != S::DoubleStepRank) return;
        const int two = one + S::Up;
        if (board.pieceOn[two] == NoPiece && ((allowed >> toSq64(two)) & 1)) {
            sink.addPawnStep(from, toSq64(two), DoubleStep);
        }
    }

    void addPawnCapture(Square square, int to, SquareMask captures, bool promotes) {
        if (!isOnBoard(to) || !((captures >> toSq64(to)) & 1)) return;
        if (promotes) {
            sink.addPromotions(toSq64(square), toSq64(to), K);
        } else {
            sink.addPawnCapture(toSq64(square), toSq64(to));
        }
    }

    void addPawnMove(int from, int to, bool promotes) {
        if (promotes) {
            sink.addPromotions(from, to, K);
        } else {
            sink.addPawnStep(from, to, 0);
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
                sink.addEnPassant(toSq64(from), to);
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
        sink.addCastling(king, toSq64(target), kind);
    }

    const Board_0x88& board;
    const PinInfo& info;
    Sink& sink;
    SquareMask own;
    SquareMask enemies;
    int king;             // sq64
    SquareMask evasions;  // where a move other than the king's answers the check, if there is one
};

}  // namespace vatro
