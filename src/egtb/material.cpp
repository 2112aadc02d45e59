// egtb/material.cpp - names of endings, and which ending leads to which.
#include "egtb/material.h"

#include <algorithm>

namespace vatro::egtb {
namespace {

constexpr std::string_view menLetters = ".PNBRQK";  // by PieceType

/// Appends what `material` leads to and then `material`, each unless the list has it.
void addInOrder(const Material& material, std::vector<Material>& list) {
    if (std::find(list.begin(), list.end(), material) != list.end()) return;
    for (const Material& next : successors(material)) {
        addInOrder(next, list);
    }
    list.push_back(material);
}

/// Calls `use` for each set of `count` men, types descending from `highest`.
template <typename Use>
void forEachSet(int count, int highest, MenOfSide& men, Use use) {
    if (count == 0) return use(men);
    for (int type = highest; type >= Pawn; --type) {
        const MenOfSide before = men;
        men.add(static_cast<PieceType>(type));
        forEachSet(count - 1, type, men, use);
        men = before;
    }
}

}  // namespace

void MenOfSide::add(PieceType type) {
    int slot = count++;
    for (; slot > 0 && types[slot - 1] < type; --slot) {
        types[slot] = types[slot - 1];
    }
    types[slot] = type;
}

void MenOfSide::remove(PieceType type) {
    const auto found = std::find(types.begin(), types.begin() + count, type);
    std::copy(found + 1, types.begin() + count, found);
    types[--count] = NoPiece;
}

int MenOfSide::countOf(PieceType type) const {
    return static_cast<int>(std::count(types.begin(), types.end(), type));
}

bool Material::isCanonical() const {
    if (side[White].count != side[Black].count) return side[White].count > side[Black].count;
    return side[White].types >= side[Black].types;
}

std::string Material::name() const {
    std::string text;
    for (const MenOfSide& men : side) {
        text += 'K';
        for (int i = 0; i < men.count; ++i) {
            text += menLetters[men.types[i]];
        }
    }
    return text;
}

std::optional<Material> parseMaterial(std::string_view name) {
    if (name.size() < 3 || name.size() > MaxPieces || name.front() != 'K') return std::nullopt;
    Material material;
    int kings = 0;
    for (const char letter : name) {
        const std::size_t type = menLetters.find(letter);
        if (letter == '.' || type == std::string_view::npos) return std::nullopt;
        if (type == King) {
            if (++kings > ColourCount) return std::nullopt;
        } else {
            if (material.side[kings - 1].count == MaxMen) return std::nullopt;
            material.side[kings - 1].add(static_cast<PieceType>(type));
        }
    }
    if (kings != ColourCount) return std::nullopt;
    return material.canonical();
}

std::vector<Material> successors(const Material& material) {
    std::vector<Material> list;
    const auto add = [&](const Material& next) {
        const Material canonical = next.canonical();
        if (canonical.pieceCount() < 3) return;
        if (std::find(list.begin(), list.end(), canonical) == list.end()) list.push_back(canonical);
    };
    for (const Colour colour : {White, Black}) {
        for (int type = Pawn; type <= Queen; ++type) {
            if (material.side[colour].countOf(static_cast<PieceType>(type)) == 0) continue;
            Material next = material;
            next.side[colour].remove(static_cast<PieceType>(type));
            add(next);
            if (type != Pawn) continue;
            for (const PieceType promoted : {Knight, Bishop, Rook, Queen}) {
                Material withPiece = next;
                withPiece.side[colour].add(promoted);
                add(withPiece);
                // A promotion that captures is a successor of its own.
                for (int i = 0; i < next.side[~colour].count; ++i) {
                    Material capturing = withPiece;
                    capturing.side[~colour].remove(next.side[~colour].types[i]);
                    add(capturing);
                }
            }
        }
    }
    return list;
}

std::vector<Material> allMaterials(int pieces) {
    std::vector<Material> list;
    for (int men = 1; men <= std::min(pieces, MaxPieces) - 2; ++men) {
        for (int whiteMen = men; 2 * whiteMen >= men; --whiteMen) {
            MenOfSide white;
            forEachSet(whiteMen, Queen, white, [&](const MenOfSide& whiteSet) {
                MenOfSide black;
                forEachSet(men - whiteMen, Queen, black, [&](const MenOfSide& blackSet) {
                    const Material material{{whiteSet, blackSet}};
                    if (material.isCanonical()) addInOrder(material, list);
                });
            });
        }
    }
    return list;
}

std::vector<Material> withAllSuccessors(const Material& material) {
    std::vector<Material> list;
    addInOrder(material, list);
    return list;
}

}  // namespace vatro::egtb
