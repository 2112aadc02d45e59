// src/egtb/tablebases.h - the endgame tablebases as the engine sees them.
//
// One TablebaseState lives as long as the search threads that hold a pointer to it. It is
// re-initialised in place; a probe that is running then finishes on the tables it began with.
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

    /// Probes may find something. Any thread.
    bool initialised() const noexcept { return current.load(std::memory_order_relaxed) != nullptr; }

    /// Opens the tables in the directories of `paths`, separated by ';', in place of those open
    /// before, with a cache of at most `cacheBytes` for their blocks (0: no cache). Statistics
    /// start at zero. One thread at a time; other threads may be probing. False when there was no
    /// memory for it: the tables are then shut down.
    bool initialise(const std::string& paths, std::size_t cacheBytes) noexcept;

    /// Closes the tables once no probe uses them any more. Like `initialise`.
    void shutDown() noexcept;

    static constexpr int NoSquare64 = 64;  // ends a list of squares; no en-passant square
    struct Query {
        int sideToMove = 0;           // 0 White, 1 Black
        int epSquare = NoSquare64;    // rank * 8 + file, or NoSquare64
        unsigned castlingRights = 0;  // a position with any of them is not found
        // A side's squares (rank * 8 + file), ended by NoSquare64, and the types of the pieces
        // there in the same order (1 pawn to 6 king), ended by 0.
        std::array<std::uint8_t, 6> whiteSquares{NoSquare64};
        std::array<std::uint8_t, 6> whiteTypes{};
        std::array<std::uint8_t, 6> blackSquares{NoSquare64};
        std::array<std::uint8_t, 6> blackTypes{};
    };
    enum Outcome { Draw = 0, WhiteMates = 1, BlackMates = 2, Unknown = 3 };

    /// True when the position was found; `plies` is then the distance to mate, 0 for a draw or for
    /// a mate on the board. False, with `outcome` Unknown, when it is illegal, has more pieces than
    /// the tables, or has no usable table. Without `mayReadDisk` only the cache is asked. Any
    /// thread.
    bool probe(const Query& query,
               bool mayReadDisk,
               Outcome& outcome,
               unsigned& plies) const noexcept;

    struct Statistics {
        std::uint64_t probes = 0;
        std::uint64_t found = 0;
        std::uint64_t diskReads = 0;  // blocks read and inflated
    };
    /// Counted since the last initialisation. Any thread.
    Statistics statistics() const noexcept;

    /// One line about files that could not be used, without a "# " or a line end; empty when there
    /// is nothing new to say. Any thread.
    std::string takeNotice();

    /// Tables that are open. Any thread.
    std::size_t tableCount() const noexcept;

  private:
    class Reader;

    /// Threads enter and leave on different lines, so that probing does not make them meet.
    /// `readers` and the counters have many writers only when there are more threads than stripes.
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
