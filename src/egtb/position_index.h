// src/egtb/position_index.h - numbers the positions of one ending.
//
// The layout of the files depends on these numbers; docs/tablebase-format.md describes them. When
// both kings stand on the a1-h8 diagonal two numbers stand for one position; both hold its value.
#pragma once

#include <array>
#include <cstdint>

#include "egtb/material.h"
#include "egtb/position.h"

namespace vatro::egtb {

class PositionIndex {
  public:
    /// `material` is canonical.
    explicit PositionIndex(const Material& material);

    /// How many numbers there are for one side to move.
    std::uint64_t size() const { return positionCount; }

    /// The number of a well-formed position of this material, colours as in `material`. Reads no
    /// side to move.
    std::uint64_t encode(const Position& position) const;

    /// The position of a number, White to move. False when two pieces share a square, so that the
    /// number stands for nothing.
    bool decode(std::uint64_t index, Position& position) const;

  private:
    /// Men of the same colour and type, which may change places.
    struct Group {
        Colour colour;
        PieceType type;
        int first;           // index in Position::Pieces
        int count;           // 1 to MaxMen
        std::uint32_t size;  // number of ways to place them
    };

    Material material;
    static std::uint64_t encodeGroup(const Group& group, const Position& position, int symmetry);
    static void decodeGroup(const Group& group, std::uint64_t& index, Position& position);

    std::array<Group, MaxMen> groups{};  // those of pawns first
    int groupCount = 0;
    int pawnGroupCount = 0;
    bool hasPawns;
    std::uint64_t positionCount;
};

}  // namespace vatro::egtb
