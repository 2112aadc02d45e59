// egtb/position_index.cpp - the number of a position, digit by digit.
#include "egtb/position_index.h"

#include <algorithm>
#include <utility>

#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

constexpr int FirstPawnSquare = 8;  // a2
constexpr int PawnSquares = 48;     // ranks 2 to 7

constexpr bool isAboveDiagonal(Square64 square) { return rankOf(square) > fileOf(square); }
constexpr bool isOnDiagonal(Square64 square) { return rankOf(square) == fileOf(square); }

/// Pairs of kings that do not touch, the white one in its normal squares.
struct KingPairs {
    static constexpr int Most = 1806;  // with pawns: White's king anywhere on the files a-d
    std::array<std::array<std::int16_t, 64>, 64> indexOf{};  // -1 for no pair
    std::array<std::array<Square64, 2>, Most> squares{};
    int count = 0;
};

constexpr KingPairs buildKingPairs(bool hasPawns) {
    KingPairs pairs;
    for (const Square64 white : allSquares) {
        for (const Square64 black : allSquares) {
            pairs.indexOf[white][black] = -1;
            if (normalisingSymmetry(white, hasPawns) != 0 || kingDistance(white, black) < 2) {
                continue;
            }
            // With White on the diagonal, mirroring takes Black's king from above it to below.
            if (!hasPawns && isOnDiagonal(white) && isAboveDiagonal(black)) continue;
            pairs.indexOf[white][black] = static_cast<std::int16_t>(pairs.count);
            pairs.squares[pairs.count] = {white, black};
            ++pairs.count;
        }
    }
    return pairs;
}

constexpr KingPairs kingPairs[2] = {buildKingPairs(false), buildKingPairs(true)};  // by hasPawns
static_assert(kingPairs[0].count == 462 && kingPairs[1].count == KingPairs::Most);

/// The binomial coefficient for k from 1 to 3; 0 for n below k.
constexpr std::uint32_t choose(std::uint32_t n, int k) {
    if (k == 1) return n;
    if (k == 2) return n * (n - 1) / 2;
    return n * (n - 1) * (n - 2) / 6;
}

/// The number of a set of squares among all sets of its size. Sorts `squares`.
std::uint32_t rankOfSet(int* squares, int count) {
    if (count == 1) return static_cast<std::uint32_t>(squares[0]);
    if (squares[0] > squares[1]) std::swap(squares[0], squares[1]);
    if (count == 3) {
        if (squares[1] > squares[2]) std::swap(squares[1], squares[2]);
        if (squares[0] > squares[1]) std::swap(squares[0], squares[1]);
    }
    std::uint32_t rank = 0;
    for (int i = 0; i < count; ++i) {
        rank += choose(static_cast<std::uint32_t>(squares[i]), i + 1);
    }
    return rank;
}

/// The set with the given number, in ascending order.
void setOfRank(std::uint32_t rank, int* squares, int count) {
    for (int k = count; k >= 1; --k) {
        std::uint32_t square = static_cast<std::uint32_t>(k - 1);
        while (square + 1 < 64 && choose(square + 1, k) <= rank) {
            ++square;
        }
        rank -= choose(square, k);
        squares[k - 1] = static_cast<int>(square);
    }
}

/// The number of the squares of like men, turned by a symmetry.
std::uint64_t numberOfSet(const PositionIndex::Digit& digit,
                          const Position& position,
                          int symmetry) {
    int squares[MaxMen]{};
    for (int i = 0; i < digit.count; ++i) {
        const Square64 square = position.pieces[digit.colour].squares[digit.first + i];
        squares[i] = mapSquare(square, symmetry) - (digit.type == Pawn ? FirstPawnSquare : 0);
    }
    return rankOfSet(squares, digit.count);
}

}  // namespace

PositionIndex::PositionIndex(const Material& ending, const DigitOrder& order)
    : material(ending), hasPawns(ending.hasPawns()) {
    addGroups(true);
    pawnDigits = count;
    kingDigit = count;
    const auto pairCount = static_cast<std::uint32_t>(kingPairs[hasPawns].count);
    digits[count++] = {true, NoColour, King, 0, 0, pairCount, 0};
    addGroups(false);
    for (int place = count - 1; place >= 0; --place) {
        Digit& digit = digits[order[place]];
        digit.stride = positionCount;
        positionCount *= digit.size;
    }
    last = order[count - 1];
}

void PositionIndex::addGroups(bool ofPawns) {
    for (const Colour colour : {White, Black}) {
        const MenOfSide& men = material.side[colour];
        for (int i = 0; i < men.count;) {
            const int size = men.countOf(men.types[i]);
            if ((men.types[i] == Pawn) == ofPawns) {
                const std::uint32_t sets = choose(ofPawns ? PawnSquares : 64, size);
                digits[count++] = {false, colour, men.types[i], i + 1, size, sets, 0};
            }
            i += size;
        }
    }
}

std::uint64_t PositionIndex::numberWithoutKings(const Position& position, int symmetry) const {
    std::uint64_t number = 0;
    for (int name = 0; name < count; ++name) {
        if (name == kingDigit) continue;
        number += numberOfSet(digits[name], position, symmetry) * digits[name].stride;
    }
    return number;
}

std::uint64_t PositionIndex::encode(const Position& position) const {
    const Square64 whiteKing = position.pieces[White].kingSquare();
    int symmetry = normalisingSymmetry(whiteKing, hasPawns);
    const Square64 white = mapSquare(whiteKing, symmetry);
    Square64 black = mapSquare(position.pieces[Black].kingSquare(), symmetry);
    if (!hasPawns && isOnDiagonal(white) && isAboveDiagonal(black)) {
        symmetry ^= SwapAxes;
        black = mapSquare(black, SwapAxes);
    }
    const auto pair = static_cast<std::uint64_t>(kingPairs[hasPawns].indexOf[white][black]);
    return numberWithoutKings(position, symmetry) + pair * digits[kingDigit].stride;
}

PositionIndex::KingLine PositionIndex::lineOf(const Position& position) const {
    const Square64 whiteKing = position.pieces[White].kingSquare();
    KingLine line{};
    line.symmetry = normalisingSymmetry(whiteKing, hasPawns);
    const Square64 white = mapSquare(whiteKing, line.symmetry);
    line.splits = !hasPawns && isOnDiagonal(white);
    line.base[0] = numberWithoutKings(position, line.symmetry);
    if (line.splits) line.base[1] = numberWithoutKings(position, line.symmetry ^ SwapAxes);
    line.pairs = kingPairs[hasPawns].indexOf[white].data();
    line.pairStride = digits[kingDigit].stride;
    return line;
}

const std::array<Square64, 2>& PositionIndex::kingPair(std::uint64_t pair) const {
    return kingPairs[hasPawns].squares[pair];
}

bool PositionIndex::decode(std::uint64_t index, Position& position) const {
    for (const Colour colour : {White, Black}) {
        const MenOfSide& men = material.side[colour];
        position.pieces[colour].count = men.count + 1;
        position.pieces[colour].types[0] = King;
        std::copy(men.types.begin(), men.types.begin() + men.count,
                  position.pieces[colour].types + 1);
    }
    position.sideToMove = White;
    for (int name = 0; name < count; ++name) {
        const Digit& digit = digits[name];
        const auto value = static_cast<std::uint32_t>(index / digit.stride % digit.size);
        if (digit.isKings) {
            const auto& [white, black] = kingPair(value);
            position.pieces[White].squares[0] = white;
            position.pieces[Black].squares[0] = black;
            continue;
        }
        int squares[MaxMen];
        setOfRank(value, squares, digit.count);
        for (int i = 0; i < digit.count; ++i) {
            position.pieces[digit.colour].squares[digit.first + i] =
                static_cast<Square64>(squares[i] + (digit.type == Pawn ? FirstPawnSquare : 0));
        }
    }
    return countSquares(position.occupied()) == material.pieceCount();
}

}  // namespace vatro::egtb
