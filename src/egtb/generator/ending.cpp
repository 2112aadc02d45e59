// egtb/generator/ending.cpp - linking the smaller endings and reading them.
#include "egtb/generator/ending.h"

#include <algorithm>
#include <optional>

#include "egtb/generator/parallel.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 2048;
constexpr std::uint64_t BytesPerWord =
    ColourCount * (sizeof(ValueLine) + 5 * sizeof(SquareMask) + sizeof(std::uint8_t));

/// Calls `use(removed, promoted, becomes)` for each way to leave an ending by a capture, a
/// promotion or both: the man captured, the pawn promoted and what it becomes; -1, -1 and NoPiece
/// for none.
template <typename Use>
void forEachExit(const std::vector<Man>& men, Use use) {
    const int count = static_cast<int>(men.size());
    for (int removed = 0; removed < count; ++removed) {
        use(removed, -1, NoPiece);
    }
    for (int pawn = 0; pawn < count; ++pawn) {
        if (men[pawn].type != Pawn) continue;
        for (const PieceType becomes : {Knight, Bishop, Rook, Queen}) {
            use(-1, pawn, becomes);
            for (int removed = 0; removed < count; ++removed) {
                // A promoting pawn captures on the last rank, where no pawn stands.
                if (men[removed].colour == men[pawn].colour || men[removed].type == Pawn) continue;
                use(removed, pawn, becomes);
            }
        }
    }
}

Material materialAfter(
    Material material, const std::vector<Man>& men, int removed, int promoted, PieceType becomes) {
    if (promoted >= 0) {
        material.side[men[promoted].colour].remove(Pawn);
        material.side[men[promoted].colour].add(becomes);
    }
    if (removed >= 0) material.side[men[removed].colour].remove(men[removed].type);
    return material;
}

}  // namespace

Ending::Ending(const Material& ending) : layout(ending), material(ending) { linkSubTables(); }

std::uint64_t Ending::memoryNeeded() const {
    std::uint64_t bytes = 0;
    std::uint64_t toLoad = 0;
    for (const auto& table : subTables) {
        bytes += table->bytes();
        toLoad = std::max(toLoad, table->bytesToLoad());
    }
    // The smaller endings are read before the arrays of this one are made.
    return bytes + std::max(toLoad, layout.wordCount() * BytesPerWord);
}

Ending::Link Ending::linkTo(int removed, int promoted, PieceType becomes, Colour toMove) {
    const std::vector<Man>& men = layout.men();
    std::optional<Man> newMan;
    if (promoted >= 0) newMan = Man{becomes, men[promoted].colour};
    const Material next = materialAfter(material, men, removed, promoted, becomes);
    auto found = std::find_if(subTables.begin(), subTables.end(), [&](const auto& table) {
        return table->material() == next && table->toMove() == toMove;
    });
    if (found == subTables.end()) {
        subTables.push_back(std::make_unique<SubTable>(next, toMove, material.hasPawns(), newMan));
        found = subTables.end() - 1;
    }
    const SubTable& table = **found;
    Link link;
    link.table = &table;
    std::vector<int> left;
    for (int man = 0; man < layout.menCount(); ++man) {
        if (man != removed && man != promoted) left.push_back(man);
    }
    for (int place = 0; place < static_cast<int>(table.men().size()); ++place) {
        if (place == table.promotedMan()) {
            link.from[place] = promoted;
            continue;
        }
        const auto man = std::find_if(left.begin(), left.end(), [&](int candidate) {
            return men[candidate] == table.men()[place];
        });
        link.from[place] = *man;
        left.erase(man);
    }
    return link;
}

void Ending::linkSubTables() {
    const std::vector<Man>& men = layout.men();
    forEachExit(men, [&](int removed, int promoted, PieceType becomes) {
        if (promoted < 0) {
            captureOf[removed] = linkTo(removed, -1, NoPiece, men[removed].colour);
        } else if (removed < 0) {
            promotionOf[promoted][becomes - Knight] =
                linkTo(-1, promoted, becomes, ~men[promoted].colour);
        } else {
            capturingPromotionOf[promoted][becomes - Knight][removed] =
                linkTo(removed, promoted, becomes, ~men[promoted].colour);
        }
    });
}

Status Ending::prepare(const std::string& directory, const Workers& workers) {
    for (const auto& table : subTables) {
        Status status = table->load(directory, workers);
        if (!status.isGood()) return status;
        longestSubMate = std::max(longestSubMate, table->longestMate());
    }
    const std::uint64_t words = layout.wordCount();
    for (SideToMove& side : sides) {
        for (auto* set :
             {&side.open, &side.notWon, &side.losable, &side.decided, &side.candidates}) {
            *set = LargeArray<SquareMask>(words);
        }
        side.values = LargeArray<ValueLine>(words);
        side.capturePly = LargeArray<std::uint8_t>(words);
    }
    parallelFor(workers, words, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            const WordPieces pieces = layout.pieces(word);
            for (const Colour us : {White, Black}) {
                sides[us].notWon[word] = legalKings(layout.men(), pieces, us);
            }
            if (sides[White].notWon[word]) addCaptures<White>(pieces, sides[White].values[word]);
            if (sides[Black].notWon[word]) addCaptures<Black>(pieces, sides[Black].values[word]);
        }
    });
    return workers.areStopped() ? Status::interrupted() : Status::good();
}

}  // namespace vatro::egtb
