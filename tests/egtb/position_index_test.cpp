// tests/egtb/position_index_test.cpp - every position has a number, and its images the same one.
#include "egtb/position_index.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

Position mapped(Position position, int symmetry) {
    for (Position::Pieces& pieces : position.pieces) {
        for (int i = 0; i < pieces.count; ++i) {
            pieces.squares[i] = mapSquare(pieces.squares[i], symmetry);
        }
    }
    return position;
}

class PositionIndexOf : public testing::TestWithParam<const char*> {};

// A prime step visits numbers of all kinds without visiting all of the larger endings.
constexpr std::uint64_t Step = 101;

/// The digits from the last to the first.
DigitOrder reversedOrder(const Material& material) {
    const int count = PositionIndex(material).digitCount();
    DigitOrder order = plainOrder;
    std::reverse(order.begin(), order.begin() + count);
    return order;
}

TEST_P(PositionIndexOf, NumbersAndPositionsAgree) {
    const Material material = *parseMaterial(GetParam());
    for (const DigitOrder& order : {plainOrder, reversedOrder(material)}) {
        const PositionIndex index(material, order);
        Position position;
        for (std::uint64_t number = 0; number < index.size(); number += Step) {
            if (!index.decode(number, position)) continue;
            EXPECT_EQ(position.material(), material);
            const std::uint64_t back = index.encode(position);
            if (back == number) continue;
            // Only both kings on the diagonal leave two numbers for one position.
            ASSERT_FALSE(material.hasPawns());
            ASSERT_EQ(index.encode(mapped(position, SwapAxes)), number);
        }
    }
}

TEST_P(PositionIndexOf, LineHoldsTheNumbersOfAllBlackKings) {
    const Material material = *parseMaterial(GetParam());
    const PositionIndex index(material, reversedOrder(material));
    Position position;
    for (std::uint64_t number = 0; number < index.size(); number += 50 * Step) {
        if (!index.decode(number, position)) continue;
        position = mapped(position, static_cast<int>(number) % (material.hasPawns() ? 2 : 8));
        const PositionIndex::KingLine line = index.lineOf(position);
        for (const Square64 king : allSquares) {
            position.pieces[Black].squares[0] = king;
            if (!isWellFormed(position) || isInCheck(position, Black)) continue;
            ASSERT_EQ(line.numberWith(king), index.encode(position)) << number << ' ' << king;
        }
    }
}

TEST_P(PositionIndexOf, SymmetricImagesShareANumber) {
    const Material material = *parseMaterial(GetParam());
    const PositionIndex index(material);
    Position position;
    for (std::uint64_t number = 0; number < index.size(); number += Step) {
        if (!index.decode(number, position)) continue;
        const Position twin = mapped(position, SwapAxes);
        const std::uint64_t own = index.encode(position);
        for (int symmetry = 0; symmetry < (material.hasPawns() ? 2 : 8); ++symmetry) {
            const std::uint64_t image = index.encode(mapped(position, symmetry));
            if (image == own) continue;
            ASSERT_FALSE(material.hasPawns());
            ASSERT_EQ(image, index.encode(twin));
        }
    }
}

TEST_P(PositionIndexOf, LikeMenMayChangePlaces) {
    const PositionIndex index(*parseMaterial(GetParam()));
    Position position;
    for (std::uint64_t number = 0; number < index.size(); number += Step) {
        if (!index.decode(number, position)) continue;
        const std::uint64_t own = index.encode(position);
        Position::Pieces& white = position.pieces[White];
        for (int i = 1; i + 1 < white.count; ++i) {
            if (white.types[i] == white.types[i + 1]) {
                std::swap(white.squares[i], white.squares[i + 1]);
            }
        }
        ASSERT_EQ(index.encode(position), own);
    }
}

INSTANTIATE_TEST_SUITE_P(Endings,
                         PositionIndexOf,
                         testing::Values("KQK", "KPK", "KBBK", "KRPK", "KPKP", "KPPK", "KNNNK"),
                         [](const auto& ending) { return std::string(ending.param); });

TEST(PositionIndex, SizesUseSymmetry) {
    const std::pair<const char*, std::uint64_t> cases[] = {
        {"KQK", 462 * 64},            // kings up to eight symmetries
        {"KPK", 48 * 1806},           // up to left and right
        {"KQQK", 462 * 64 * 63 / 2},  // like men once
        {"KPPKP", std::uint64_t{48} * 47 / 2 * 48 * 1806},
    };
    for (const auto& [ending, size] : cases) {
        EXPECT_EQ(PositionIndex(*parseMaterial(ending)).size(), size) << ending;
    }
}

}  // namespace
}  // namespace vatro::egtb
