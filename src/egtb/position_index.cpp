// src/egtb/position_index.cpp - pawns, then kings, then each group of like men as a combination.
//
// Pawns come first because they move least: a search then stays within few blocks of a table.
#include "egtb/position_index.h"

#include <algorithm>
#include <utility>

#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

constexpr int PawnSquares = 48;  // ranks 2 to 7

/// Pairs of kings that do not touch, the white one in its normal squares.
struct KingPairs {
    // The largest number of pairs: White on the files a-d.
    static constexpr int Most = 1806;
    std::array<std::array<std::int16_t, 64>, 64> indexOf{};  // -1 for no pair
    std::array<std::array<std::uint8_t, 2>, Most> squares{};
    int count = 0;
};

constexpr KingPairs buildKingPairs(bool hasPawns) {
    KingPairs pairs;
    for (int white = 0; white < 64; ++white) {
        for (int black = 0; black < 64; ++black) {
            pairs.indexOf[white][black] = -1;
            if (normalisingSymmetry(white, hasPawns) != 0 || kingDistance(white, black) < 2) {
                continue;
            }
            // With White on the diagonal the mirrored black king stands for the other half.
            const bool isOnDiagonal = fileOf64(white) == rankOf64(white);
            if (!hasPawns && isOnDiagonal && rankOf64(black) > fileOf64(black)) continue;
            pairs.indexOf[white][black] = static_cast<std::int16_t>(pairs.count);
            pairs.squares[pairs.count] = {static_cast<std::uint8_t>(white),
                                          static_cast<std::uint8_t>(black)};
            ++pairs.count;
        }
    }
    return pairs;
}

constexpr KingPairs kingPairs[2] = {buildKingPairs(false), buildKingPairs(true)};  // by hasPawns
static_assert(kingPairs[0].count == 462 && kingPairs[1].count == KingPairs::Most);

/// `n` over `k` for k up to 3; 0 for n below k.
constexpr std::uint32_t choose(std::uint32_t n, int k) {
    if (k == 1) return n;
    if (k == 2) return n * (n - 1) / 2;
    return n * (n - 1) * (n - 2) / 6;
}

/// The number of a set of squares: those of lower sets of the same size come first.
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

}  // namespace

PositionIndex::PositionIndex(const Material& ending)
    : material(ending), hasPawns(ending.hasPawns()) {
    positionCount = static_cast<std::uint64_t>(kingPairs[hasPawns].count);
    for (const bool isPawnGroup : {true, false}) {
        for (const Colour colour : {White, Black}) {
            const MenOfSide& men = material.side[colour];
            for (int i = 0; i < men.count;) {
                const int count = men.countOf(men.types[i]);
                if ((men.types[i] == Pawn) == isPawnGroup) {
                    const std::uint32_t size = choose(isPawnGroup ? PawnSquares : 64, count);
                    groups[groupCount++] = {colour, men.types[i], i + 1, count, size};
                    positionCount *= size;
                }
                i += count;
            }
        }
        if (isPawnGroup) pawnGroupCount = groupCount;
    }
}

std::uint64_t PositionIndex::encodeGroup(const Group& group,
                                         const Position& position,
                                         int symmetry) {
    int squares[MaxMen]{};
    for (int i = 0; i < group.count; ++i) {
        const int square = position.pieces[group.colour].squares[group.first + i];
        squares[i] = mapSquare(square, symmetry) - (group.type == Pawn ? 8 : 0);
    }
    return rankOfSet(squares, group.count);
}

void PositionIndex::decodeGroup(const Group& group, std::uint64_t& index, Position& position) {
    int squares[MaxMen];
    setOfRank(static_cast<std::uint32_t>(index % group.size), squares, group.count);
    index /= group.size;
    for (int i = 0; i < group.count; ++i) {
        position.pieces[group.colour].squares[group.first + i] =
            static_cast<std::uint8_t>(squares[i] + (group.type == Pawn ? 8 : 0));
    }
}

std::uint64_t PositionIndex::encode(const Position& position) const {
    const int whiteKing = position.pieces[White].kingSquare();
    int symmetry = normalisingSymmetry(whiteKing, hasPawns);
    int white = mapSquare(whiteKing, symmetry);
    int black = mapSquare(position.pieces[Black].kingSquare(), symmetry);
    if (!hasPawns && fileOf64(white) == rankOf64(white) && rankOf64(black) > fileOf64(black)) {
        symmetry ^= SwapAxes;
        black = mapSquare(black, SwapAxes);
    }
    const KingPairs& pairs = kingPairs[hasPawns];
    std::uint64_t index = 0;
    for (int g = 0; g < pawnGroupCount; ++g) {
        index = index * groups[g].size + encodeGroup(groups[g], position, symmetry);
    }
    index = index * static_cast<std::uint64_t>(pairs.count) +
            static_cast<std::uint64_t>(pairs.indexOf[white][black]);
    for (int g = pawnGroupCount; g < groupCount; ++g) {
        index = index * groups[g].size + encodeGroup(groups[g], position, symmetry);
    }
    return index;
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
    const KingPairs& pairs = kingPairs[hasPawns];
    for (int g = groupCount - 1; g >= pawnGroupCount; --g) {
        decodeGroup(groups[g], index, position);
    }
    const auto& kings = pairs.squares[index % static_cast<std::uint64_t>(pairs.count)];
    index /= static_cast<std::uint64_t>(pairs.count);
    position.pieces[White].squares[0] = kings[0];
    position.pieces[Black].squares[0] = kings[1];
    for (int g = pawnGroupCount - 1; g >= 0; --g) {
        decodeGroup(groups[g], index, position);
    }
    return countSquares(position.occupied()) == material.pieceCount();
}

}  // namespace vatro::egtb
