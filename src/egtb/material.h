// src/egtb/material.h - the men of an ending, its name, and the endings that it turns into.
//
// An ending has one name, with the stronger side first ("KRPKR"); positions with the colours the
// other way round are answered from the same table.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "board/types.h"

namespace vatro::egtb {

constexpr int MaxPieces = 5;            // kings included; the search asks for no more
constexpr int MaxMen = MaxPieces - 2;   // men other than the kings
constexpr int MenKeyCount = 6 * 6 * 6;  // see MenOfSide::key

/// The men of one side besides its king, strongest first.
struct MenOfSide {
    std::array<PieceType, MaxMen> types{};  // NoPiece after the last
    int count = 0;

    void add(PieceType type);
    void remove(PieceType type);
    int countOf(PieceType type) const;
    /// A different number below MenKeyCount for each set of men; more or stronger men give no
    /// particular order.
    int key() const { return (types[0] * 6 + types[1]) * 6 + types[2]; }
    friend bool operator==(const MenOfSide&, const MenOfSide&) = default;
};

struct Material {
    std::array<MenOfSide, ColourCount> side;

    int pieceCount() const { return side[White].count + side[Black].count + 2; }
    bool hasPawns() const { return side[White].countOf(Pawn) + side[Black].countOf(Pawn) > 0; }
    /// Both sides have the same men, so that one side to move says it all.
    bool isSymmetric() const { return side[White] == side[Black]; }
    /// White is the stronger side or the sides are alike: a table has this material.
    bool isCanonical() const;
    Material withColoursSwapped() const { return {{side[Black], side[White]}}; }
    Material canonical() const { return isCanonical() ? *this : withColoursSwapped(); }
    std::string name() const;
    friend bool operator==(const Material&, const Material&) = default;
};

/// Reads a name such as "KRPKR", men in any order, either side first. Nothing when it names no
/// ending of three to MaxPieces pieces.
std::optional<Material> parseMaterial(std::string_view name);

/// The canonical endings that one capture or promotion leads to, without that of the bare kings.
std::vector<Material> successors(const Material& material);

/// All canonical endings of three to `pieces` pieces, each after its successors.
std::vector<Material> allMaterials(int pieces);

/// The given ending preceded by all that it leads to, in an order in which they can be made.
std::vector<Material> withAllSuccessors(const Material& material);

}  // namespace vatro::egtb
