// egtb/tablebases.cpp - replacing tables under running probes, and checking queries.
#include "egtb/tablebases.h"

#include <chrono>
#include <new>
#include <thread>

#include "egtb/position.h"
#include "egtb/table_set.h"

namespace vatro {
namespace {

/// The stripe of the calling thread: each new thread gets the next one.
std::size_t stripeOfThread(std::size_t stripeCount) {
    static std::atomic<std::size_t> next{0};
    thread_local const std::size_t mine = next.fetch_add(1, std::memory_order_relaxed);
    return mine % stripeCount;
}

/// False when the two lists do not match or hold what is no piece or no square.
bool addPieces(const std::array<std::uint8_t, 6>& squares,
               const std::array<std::uint8_t, 6>& types,
               egtb::Position::Pieces& pieces) {
    for (std::size_t i = 0; i < squares.size(); ++i) {
        const bool listEnds = squares[i] == TablebaseState::EndOfList;
        if (listEnds || types[i] == NoPiece) return listEnds && types[i] == NoPiece;
        if (squares[i] > 63 || types[i] > King) return false;
        if (!pieces.add(static_cast<PieceType>(types[i]), static_cast<Square64>(squares[i])))
            return false;
    }
    return false;
}

/// A pawn of the other side can just have passed the square with a double step.
bool isPossibleEpSquare(const egtb::Position& position, Square64 ep) {
    const bool isWhite = position.sideToMove == White;
    if (rankOf(ep) != (isWhite ? 5 : 2)) return false;
    const Square64 pawn = isWhite ? ep - 8 : ep + 8;
    const Square64 home = isWhite ? ep + 8 : ep - 8;
    if (position.occupied() & (maskOf(ep) | maskOf(home))) return false;
    const egtb::Position::Pieces& enemies = position.pieces[~position.sideToMove];
    for (int i = 1; i < enemies.count; ++i) {
        if (enemies.squares[i] == pawn) return enemies.types[i] == Pawn;
    }
    return false;
}

/// False when the query is not a legal position.
bool readQuery(const TablebaseState::Query& query, egtb::Position& position) {
    if (query.castlingRights != 0 || (query.sideToMove != White && query.sideToMove != Black)) {
        return false;
    }
    if (!addPieces(query.whiteSquares, query.whiteTypes, position.pieces[White]) ||
        !addPieces(query.blackSquares, query.blackTypes, position.pieces[Black])) {
        return false;
    }
    position.sideToMove = static_cast<Colour>(query.sideToMove);
    if (!egtb::isWellFormed(position) || !egtb::isLegal(position)) return false;
    if (query.epSquare == TablebaseState::NoEpSquare) return true;
    if (query.epSquare < 0 || query.epSquare > 63) return false;
    return isPossibleEpSquare(position, static_cast<Square64>(query.epSquare));
}

}  // namespace

/// Keeps the tables from being deleted while it lives. `replace` first stores the new pointer and
/// then waits until each stripe has no readers. All these operations are sequentially consistent,
/// so they have one order: either the reader's increment precedes the wait, which then sees it, or
/// the reader's load of the pointer follows the store.
class TablebaseState::Reader {
  public:
    explicit Reader(const TablebaseState& state)
        : stripe(state.stripes[stripeOfThread(StripeCount)]) {
        stripe.readers.fetch_add(1, std::memory_order_seq_cst);
        tables = state.current.load(std::memory_order_seq_cst);
    }
    ~Reader() { stripe.readers.fetch_sub(1, std::memory_order_release); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Stripe& stripe;
    const egtb::TableSet* tables = nullptr;
};

TablebaseState::TablebaseState() = default;

TablebaseState::~TablebaseState() { shutDown(); }

void TablebaseState::replace(const egtb::TableSet* next) noexcept {
    const egtb::TableSet* previous = current.exchange(next, std::memory_order_seq_cst);
    if (previous == nullptr) return;
    for (Stripe& stripe : stripes) {
        // A short wait: a probe takes microseconds, one that reads from disk milliseconds.
        while (stripe.readers.load(std::memory_order_seq_cst) != 0) {
            std::this_thread::yield();
        }
    }
    delete previous;
}

bool TablebaseState::initialise(const std::string& paths, std::size_t cacheBytes) noexcept {
    const std::lock_guard<std::mutex> lock(replacing);
    // The old tables go first: there may be no memory for two caches.
    replace(nullptr);
    for (Stripe& stripe : stripes) {
        stripe.probes.store(0, std::memory_order_relaxed);
        stripe.found.store(0, std::memory_order_relaxed);
        stripe.diskReads.store(0, std::memory_order_relaxed);
    }
    try {
        replace(new egtb::TableSet(paths, cacheBytes));
        return true;
    } catch (const std::exception&) {  // no memory, or a path the file system cannot take
        return false;
    }
}

void TablebaseState::shutDown() noexcept {
    const std::lock_guard<std::mutex> lock(replacing);
    replace(nullptr);
}

bool TablebaseState::probe(const Query& query,
                           bool mayReadDisk,
                           Outcome& outcome,
                           unsigned& plies,
                           bool* hasReadDisk) const noexcept {
    outcome = Unknown;
    plies = 0;
    if (hasReadDisk) *hasReadDisk = false;
    egtb::Position position;
    const Reader reader(*this);
    if (reader.tables == nullptr) return false;
    reader.stripe.probes.fetch_add(1, std::memory_order_relaxed);
    if (!readQuery(query, position)) return false;
    std::uint64_t diskReads = 0;
    const auto source = mayReadDisk ? egtb::TableSet::Source::Disk : egtb::TableSet::Source::Cache;
    const int code =
        reader.tables->probe(position, static_cast<Square64>(query.epSquare), source, diskReads);
    if (diskReads > 0) {
        reader.stripe.diskReads.fetch_add(diskReads, std::memory_order_relaxed);
        if (hasReadDisk) *hasReadDisk = true;
    }
    if (code < 0) return false;
    reader.stripe.found.fetch_add(1, std::memory_order_relaxed);
    if (code == egtb::DrawCode) {
        outcome = Draw;
        return true;
    }
    outcome = egtb::isWinCode(code) == (position.sideToMove == White) ? WhiteMates : BlackMates;
    plies = static_cast<unsigned>(egtb::pliesOfCode(code));
    return true;
}

TablebaseState::Statistics TablebaseState::statistics() const noexcept {
    Statistics sum;
    for (const Stripe& stripe : stripes) {
        sum.probes += stripe.probes.load(std::memory_order_relaxed);
        sum.found += stripe.found.load(std::memory_order_relaxed);
        sum.diskReads += stripe.diskReads.load(std::memory_order_relaxed);
    }
    return sum;
}

std::size_t TablebaseState::tableCount() const noexcept {
    const Reader reader(*this);
    return reader.tables ? reader.tables->tableCount() : 0;
}

std::string TablebaseState::takeNotice() {
    const Reader reader(*this);
    return reader.tables ? reader.tables->takeNotice() : std::string();
}

}  // namespace vatro
