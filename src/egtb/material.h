// egtb/material.h - the men of an ending, its name, and the endings that it turns into.
//
// An ending has one name, with the stronger side first ("KRPKR"). Its table also answers for
// positions with the colours swapped.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/types.h"

namespace vatro::egtb {

constexpr int MaxPieces = 5;           // kings included; the search probes no larger positions
constexpr int MaxMen = MaxPieces - 2;  // without the kings
constexpr int ManTypeCount = 6;        // NoPiece and the types other than the king
constexpr int MenKeyCount = ManTypeCount * ManTypeCount * ManTypeCount;  // see MenOfSide::key
static_assert(MaxMen == 3 && King == ManTypeCount);

/// The men of one side besides its king, strongest first.
struct MenOfSide {
    std::array<PieceType, MaxMen> types{};  // NoPiece after the last
    int count = 0;

    void add(PieceType type);
    void remove(PieceType type);
    int countOf(PieceType type) const;
    /// A number below MenKeyCount that tells sets of men apart.
    int key() const { return (types[0] * ManTypeCount + types[1]) * ManTypeCount + types[2]; }
    friend bool operator==(const MenOfSide&, const MenOfSide&) = default;
};

struct Material {
    std::array<MenOfSide, ColourCount> side;

    int pieceCount() const { return side[White].count + side[Black].count + 2; }
    bool hasPawns() const { return side[White].countOf(Pawn) + side[Black].countOf(Pawn) > 0; }
    /// Both sides have the same men: with colours swapped, White to move stands for Black to move.
    bool isSymmetric() const { return side[White] == side[Black]; }
    /// White is the stronger side or the sides are alike, as in the tables.
    bool isCanonical() const;
    Material withColoursSwapped() const { return {{side[Black], side[White]}}; }
    Material canonical() const { return isCanonical() ? *this : withColoursSwapped(); }
    std::string name() const;
    friend bool operator==(const Material&, const Material&) = default;
};

/// The canonical ending of a name such as "KRPKR", in which the men may stand in any order and
/// either side first. Nothing unless it has three to MaxPieces pieces.
std::optional<Material> parseMaterial(std::string_view name);

/// The canonical endings, other than bare kings, that one capture or promotion leads to.
std::vector<Material> successors(const Material& material);

/// All canonical endings of three to `pieces` pieces, each after the endings it leads to.
std::vector<Material> allMaterials(int pieces);

/// The given ending and, before it, all that it leads to, each after its own successors.
std::vector<Material> withAllSuccessors(const Material& material);

}  // namespace vatro::egtb
