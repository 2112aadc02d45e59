// egtb/tablebases.h - the endgame tablebases as the engine sees them.
//
// The search threads keep a pointer to one TablebaseState, which is re-initialised in place; a
// running probe finishes with the tables it began with.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace vatro {

namespace egtb {
class TableSet;
}

class TablebaseState {
  public:
    TablebaseState();
    ~TablebaseState();
    TablebaseState(const TablebaseState&) = delete;
    TablebaseState& operator=(const TablebaseState&) = delete;

    /// Tables are open, so probes may find something. Any thread.
    bool initialised() const noexcept { return current.load(std::memory_order_relaxed) != nullptr; }

    /// Closes the tables that are open and opens those in the directories of `paths`, separated by
    /// ';', with a cache of at most `cacheBytes` for their blocks (0: no cache). Statistics start
    /// at zero. Any thread, also while others probe. False when there was no memory for it: the
    /// tables are then shut down.
    bool initialise(const std::string& paths, std::size_t cacheBytes) noexcept;

    /// Tables that are open. Any thread.
    std::size_t tableCount() const noexcept;

    /// Closes the tables, after the last probe that uses them. Any thread.
    void shutDown() noexcept;

    static constexpr int NoEpSquare = 64;  // no capture en passant
    static constexpr int EndOfList = 64;   // ends a list of squares
    /// A position, in squares 0 to 63 (rank * 8 + file).
    struct Query {
        int sideToMove = 0;  // 0 White, 1 Black
        int epSquare = NoEpSquare;
        unsigned castlingRights = 0;  // a position with any of them is not found
        // A side's squares, up to EndOfList, and the types of the pieces there (1 pawn to 6 king)
        // in the same order, up to 0.
        std::array<std::uint8_t, 6> whiteSquares{EndOfList};
        std::array<std::uint8_t, 6> whiteTypes{};
        std::array<std::uint8_t, 6> blackSquares{EndOfList};
        std::array<std::uint8_t, 6> blackTypes{};
    };
    enum Outcome { Draw = 0, WhiteMates = 1, BlackMates = 2, Unknown = 3 };

    /// True when the position was found; `plies` is then the distance to mate, 0 for a draw or for
    /// a mate on the board. False, with `outcome` Unknown, when it is illegal or no table gives its
    /// value. Without `mayReadDisk` only the cache is asked; `hasReadDisk` tells whether the probe
    /// went beyond it. Any thread.
    bool probe(const Query& query,
               bool mayReadDisk,
               Outcome& outcome,
               unsigned& plies,
               bool* hasReadDisk = nullptr) const noexcept;

    struct Statistics {
        std::uint64_t probes = 0;
        std::uint64_t found = 0;
        std::uint64_t diskReads = 0;  // blocks read and inflated
    };
    /// Counted since the last initialisation. Any thread.
    Statistics statistics() const noexcept;

    /// One line, without "# " and line end, about files that could not be used; empty when there is
    /// nothing new to say, which takes no lock. Any thread.
    std::string takeNotice();

  private:
    class Reader;

    /// Each thread counts in a stripe of its own, so that probes do not contend for a cache line.
    /// With more threads than stripes some share one: hence the atomic additions.
    struct alignas(64) Stripe {
        std::atomic<std::uint32_t> readers{0};
        std::atomic<std::uint64_t> probes{0};
        std::atomic<std::uint64_t> found{0};
        std::atomic<std::uint64_t> diskReads{0};
    };
    static constexpr std::size_t StripeCount = 64;

    void replace(const egtb::TableSet* next) noexcept;

    std::atomic<const egtb::TableSet*> current{nullptr};  // written under `replacing`
    std::mutex replacing;
    mutable std::array<Stripe, StripeCount> stripes;
};

}  // namespace vatro
