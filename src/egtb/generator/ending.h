// egtb/generator/ending.h - one ending while its values are worked out.
//
// The mates come first, then the positions one ply from them, and so on. At each ply, `solve` goes
// from the positions decided at the ply before back to those that reach them by a quiet move; it
// moves 64 positions, a word, at a time. The values of captures and promotions come from smaller
// endings and are known before the first ply.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "egtb/generator/sub_table.h"
#include "egtb/generator/value_line.h"
#include "egtb/generator/word_layout.h"
#include "egtb/large_array.h"

namespace vatro::egtb {

/// What is known of the positions with one side to move. All arrays are indexed by word.
struct SideToMove {
    LargeArray<SquareMask> open;     // legal, value not yet known; after solving: legal
    LargeArray<SquareMask> notWon;   // legal, not known to be won
    LargeArray<SquareMask> losable;  // no capture or promotion wins or draws
    LargeArray<ValueLine> values;    // of the position or, while open, of the best capture
    LargeArray<SquareMask> decided;  // at the ply before
    /// Open positions to look at in this ply. Written by all threads.
    LargeArray<SquareMask> candidates;
    /// The next ply at which the capture of an open position decides it; NoPly for none.
    LargeArray<std::uint8_t> capturePly;
    /// Words in which a pawn's double step can be answered en passant.
    std::vector<std::uint32_t> passingWords;
};

class Ending {
  public:
    explicit Ending(const Material& material);

    /// Bytes that `prepare` and `solve` take at their peak.
    std::uint64_t memoryNeeded() const;

    /// Reads the smaller endings from `directory` and finds mates and stalemates. Throws
    /// std::bad_alloc.
    Status prepare(const std::string& directory, const Workers& workers);

    /// Called after each ply; false ends the work.
    using PlyDone = std::function<bool(int plies)>;
    /// Works out all positions. Fails when `plyDone` says so or the format cannot hold a mate.
    Status solve(const Workers& workers, const PlyDone& plyDone);

    /// Checks values, by side to move and word, against the moves of their positions: each as the
    /// value of a move into the position, NoMoveValue where it is illegal. Needs only `prepare`.
    /// Says in the status which position is wrong.
    Status verify(const Workers& workers,
                  const std::array<LargeArray<ValueLine>, ColourCount>& stored,
                  const std::function<bool(double)>& partDone) const;

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

    void linkSubTables();
    Link linkTo(int removed, int promoted, PieceType becomes, Colour toMove);

    // capture_values.cpp
    static void takeBest(const Link& link,
                         Square64 whiteKing,
                         const ManSquares& at,
                         SquareMask barred,
                         ValueLine& best);
    template <Colour Us>
    void addCaptures(const WordPieces& pieces, ValueLine& best) const;
    template <Colour Us>
    void addPromotions(
        const WordPieces& pieces, int pawn, Square64 to, int captured, ValueLine& best) const;
    template <Colour Us>
    ValueLine capturesEnPassant(const WordPieces& pieces, int pawn) const;

    // quiet_moves.cpp
    template <Colour Us>
    SquareMask movesToNotWon(std::uint64_t word,
                             const WordPieces& pieces,
                             SquareMask wanted,
                             int plies) const;
    template <Colour Us>
    SquareMask whiteKingMovesTo(const LargeArray<SquareMask>& set,
                                std::uint64_t word,
                                const WordPieces& pieces) const;
    template <Colour Us>
    SquareMask pawnMovesToNotWon(
        std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask wanted, int plies) const;
    template <Colour Us>
    bool canBePassed(const WordPieces& pieces, int pawn) const;
    template <Colour Us>
    SquareMask doubleStepsToLost(std::uint64_t word, SquareMask wanted, int plies) const;

    // quiet_unmoves.cpp
    template <Colour Us>
    void addCandidates(std::uint64_t word, SquareMask found, bool losable);
    template <Colour Us>
    void unmoveQuietly(std::uint64_t word, SquareMask reached, bool losable);
    template <Colour Us>
    void unmoveWhiteKing(std::uint64_t word,
                         const WordPieces& pieces,
                         SquareMask reached,
                         bool losable);
    template <Colour Us>
    void unmovePawn(
        std::uint64_t word, const WordPieces& pieces, int pawn, SquareMask reached, bool losable);

    // verify_moves.cpp
    template <Colour Us>
    void addQuietMoves(std::uint64_t word,
                       const WordPieces& pieces,
                       const LargeArray<ValueLine>& theirs,
                       ValueLine& best) const;
    template <Colour Us>
    void addPawnMoves(std::uint64_t word,
                      const WordPieces& pieces,
                      int pawn,
                      const LargeArray<ValueLine>& theirs,
                      ValueLine& best) const;
    template <Colour Us>
    ValueLine afterDoubleStep(const WordPieces& pieces, int pawn, const ValueLine& line) const;
    template <Colour Us>
    SquareMask wrongValues(std::uint64_t word,
                           const WordPieces& pieces,
                           const std::array<LargeArray<ValueLine>, ColourCount>& stored,
                           ValueLine& expected) const;

    // solve.cpp
    template <Colour Us>
    void findMatesAndStalemates(std::uint64_t word);
    template <Colour Us>
    void findCandidates(std::uint64_t word, int plies);
    template <Colour Us>
    void findPassingCandidates(std::uint64_t word, int plies);
    template <Colour Us>
    void findAllPassingCandidates(const Workers& workers, int plies);
    static SquareMask takeCandidates(SideToMove& side,
                                     std::uint64_t word,
                                     SquareMask capturing,
                                     Value decisive);
    template <Colour Us>
    SquareMask lostAmong(std::uint64_t word, SquareMask candidates, int plies) const;
    template <Colour Us>
    SquareMask decide(std::uint64_t word, int plies);
    bool decideAll(const Workers& workers, int plies);
    void findNextCapture(SideToMove& side, std::uint64_t word, int plies) const;
    void settleDraws(const Workers& workers);

    WordLayout layout;
    Material material;
    std::vector<std::unique_ptr<SubTable>> subTables;
    std::array<Link, MaxMen> captureOf;  // by the man that is taken; his side is then to move
    std::array<std::array<Link, PromotionCount>, MaxMen> promotionOf;  // by pawn and new type
    // By pawn, new type and the man that is taken.
    std::array<std::array<std::array<Link, MaxMen>, PromotionCount>, MaxMen> capturingPromotionOf;
    std::array<SideToMove, ColourCount> sides;
    std::mutex listing;      // guards the lists of passing words while they are made
    int longestSubMate = 0;  // plies, over all smaller endings
    int maxPlies = 0;
};

}  // namespace vatro::egtb
