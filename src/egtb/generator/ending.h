// src/egtb/generator/ending.h - one ending while it is worked out.
//
// Backward from the mates, one ply at a time: `solve` asks of every open position whether a quiet
// move reaches a position found at an earlier ply, 64 positions in one word. Captures and
// promotions do not take part: their values come from the smaller endings before the first ply.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "egtb/generator/sub_table.h"
#include "egtb/generator/value_code.h"
#include "egtb/generator/word_layout.h"

namespace vatro::egtb {

/// The positions with one side to move. Sets and values are indexed by word.
struct SideToMove {
    std::vector<SquareMask> open;     // legal and not yet known; after solving: legal
    std::vector<SquareMask> lost;     // lost within the plies done so far
    std::vector<SquareMask> notWon;   // legal and not won within the plies done so far
    std::vector<SquareMask> winning;  // open, and a capture or promotion wins
    std::vector<SquareMask> losable;  // open, and no capture or promotion saves the game
    std::vector<ValueLine> values;    // of the best capture or promotion, then of the position
};

class Ending {
  public:
    explicit Ending(const Material& material);

    /// Bytes that `prepare` and `solve` take at their peak.
    std::uint64_t memoryNeeded() const;

    /// Reads the smaller endings from `directory` and finds mates and stalemates. False on
    /// failure, with a line for the user in `error`. Throws std::bad_alloc.
    bool prepare(const std::string& directory, int threads, std::string& error);

    /// Called after each ply; false ends the work.
    using PlyDone = std::function<bool(int plies)>;
    /// Works out all positions. False when `plyDone` said so or the format cannot hold the result.
    bool solve(int threads, const PlyDone& plyDone, std::string& error);

    const WordLayout& wordLayout() const { return layout; }
    const SideToMove& side(Colour toMove) const { return sides[toMove]; }
    int longestMate() const { return maxPlies; }  // plies

  private:
    /// A smaller ending, and which man of this ending stands in each of its places.
    struct Link {
        const SubTable* table = nullptr;
        std::array<int, MaxMen> from{};
    };
    static constexpr int PromotionCount = 4;  // knight to queen
    enum class Goal { Lost, NotWon };

    Link linkTo(int removed, int promoted, PieceType becomes, Colour toMove);
    void fetch(const Link& link,
               int whiteKing,
               const std::array<int, MaxMen>& at,
               ValueLine& line) const;

    template <Colour Us>
    void addCaptures(const WordPieces& pieces, ValueLine& best) const;
    template <Colour Us>
    void addPromotions(
        const WordPieces& pieces, int pawn, int to, int captured, ValueLine& best) const;

    template <Colour Us, Goal G>
    SquareMask quietMovesTo(std::uint64_t word,
                            const WordPieces& pieces,
                            SquareMask wanted,
                            int plies) const;
    template <Colour Us, Goal G>
    SquareMask whiteKingMovesTo(std::uint64_t word, const WordPieces& pieces) const;
    template <Colour Us, Goal G>
    SquareMask pawnMovesTo(
        std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask wanted, int plies) const;
    template <Colour Us, Goal G>
    SquareMask doubleStepTo(std::uint64_t target,
                            const WordPieces& pieces,
                            int pawn,
                            SquareMask wanted,
                            int plies) const;
    template <Colour Them, Goal G>
    const std::vector<SquareMask>& targets() const {
        return G == Goal::Lost ? sides[Them].lost : sides[Them].notWon;
    }

    template <Colour Us>
    void findMatesAndStalemates(std::uint64_t word);
    template <Colour Us>
    bool findWins(std::uint64_t word, int plies);
    template <Colour Us>
    bool findLosses(std::uint64_t word, int plies);

    WordLayout layout;
    Material material;
    std::vector<std::unique_ptr<SubTable>> subTables;
    std::array<Link, MaxMen> captureOf;  // by the man that is taken; his side is then to move
    std::array<std::array<Link, PromotionCount>, MaxMen> promotionOf;  // by pawn and new type
    // By pawn, new type and the man that is taken.
    std::array<std::array<std::array<Link, MaxMen>, PromotionCount>, MaxMen> capturingPromotionOf;
    std::array<SideToMove, ColourCount> sides;
    int longestSubMate = 0;  // plies, over all smaller endings
    int maxPlies = 0;
};

}  // namespace vatro::egtb
