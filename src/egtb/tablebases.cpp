// src/egtb/tablebases.cpp - guarding the tables in use, and reading the engine's questions.
#include "egtb/tablebases.h"

#include <chrono>
#include <new>
#include <thread>

#include "egtb/position.h"
#include "egtb/table_set.h"

namespace vatro {
namespace {

/// The stripe of the calling thread: threads take turns.
std::size_t stripeOfThread(std::size_t stripeCount) {
    static std::atomic<std::size_t> next{0};
    thread_local const std::size_t mine = next.fetch_add(1, std::memory_order_relaxed);
    return mine % stripeCount;
}

bool addPieces(const std::array<std::uint8_t, 6>& squares,
               const std::array<std::uint8_t, 6>& types,
               egtb::Position::Pieces& pieces) {
    for (std::size_t i = 0; i < squares.size(); ++i) {
        if (squares[i] == TablebaseState::NoSquare64 || types[i] == NoPiece) {
            return squares[i] == TablebaseState::NoSquare64 && types[i] == NoPiece;
        }
        if (squares[i] > 63 || types[i] > King) return false;
        if (!pieces.add(static_cast<PieceType>(types[i]), squares[i])) return false;
    }
    return false;
}

/// An en-passant square belongs to a pawn that has just made its double step.
bool isPossibleEpSquare(const egtb::Position& position, int ep) {
    const bool isWhite = position.sideToMove == White;
    if (ep < 0 || ep > 63 || rankOf64(ep) != (isWhite ? 5 : 2)) return false;
    const int pawn = isWhite ? ep - 8 : ep + 8;
    const int home = isWhite ? ep + 8 : ep - 8;
    if (position.occupied() & (maskOf(ep) | maskOf(home))) return false;
    const egtb::Position::Pieces& enemies = position.pieces[~position.sideToMove];
    for (int i = 1; i < enemies.count; ++i) {
        if (enemies.squares[i] == pawn) return enemies.types[i] == Pawn;
    }
    return false;
}

/// False when the query is no legal position.
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
    return query.epSquare == egtb::NoEpSquare || isPossibleEpSquare(position, query.epSquare);
}

}  // namespace

/// Announces that the calling thread uses the tables, for as long as it lives. Whoever replaces
/// them first stores the new pointer and then waits for the readers. In the one order of all
/// sequentially consistent operations either the reader's entry comes before that wait, which then
/// sees it, or the reader loads the pointer after the store.
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
        // A probe takes microseconds, one that reads from disk milliseconds.
        while (stripe.readers.load(std::memory_order_seq_cst) != 0) {
            std::this_thread::yield();
        }
    }
    delete previous;
}

bool TablebaseState::initialise(const std::string& paths, std::size_t cacheBytes) noexcept {
    const std::lock_guard<std::mutex> lock(replacing);
    // The old cache goes before the new one comes: both together might not fit.
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
                           unsigned& plies) const noexcept {
    outcome = Unknown;
    plies = 0;
    egtb::Position position;
    const Reader reader(*this);
    if (reader.tables == nullptr) return false;
    reader.stripe.probes.fetch_add(1, std::memory_order_relaxed);
    if (!readQuery(query, position)) return false;
    std::uint64_t diskReads = 0;
    const auto source = mayReadDisk ? egtb::TableSet::Source::Disk : egtb::TableSet::Source::Cache;
    const int code = reader.tables->probe(position, query.epSquare, source, diskReads);
    if (diskReads > 0) reader.stripe.diskReads.fetch_add(diskReads, std::memory_order_relaxed);
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

std::string TablebaseState::takeNotice() {
    const Reader reader(*this);
    return reader.tables ? reader.tables->takeNotice() : std::string();
}

std::size_t TablebaseState::tableCount() const noexcept {
    const Reader reader(*this);
    return reader.tables ? reader.tables->tableCount() : 0;
}

}  // namespace vatro
