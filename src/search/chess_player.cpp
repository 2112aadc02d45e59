// src/search/chess_player.cpp - preparing the player, starting and stopping its search.
#include "search/chess_player.h"

#include <algorithm>
#include <thread>

#include "board/console.h"
#include "board/draw.h"
#include "board/move_generation.h"

namespace vatro {
namespace {

/// Resizes a table and reports its new size, or that there is no memory for it.
template <typename Table>
bool resizeTable(Table& table, const char* name, unsigned megabytes) {
    if (!table.resize(megabytes)) {
        say(formatted("# ERROR: no memory for a %s of %u MB\n", name, megabytes));
        return false;
    }
    say(formatted("# new size of %s: %u MB\n", name, table.sizeInMB()));
    return true;
}

constexpr char ttName[] = "TT hash";
constexpr char pawnHashName[] = "Pawn hash";

/// Makes the table anew for `setting` megabytes. Without memory the setting goes back to what the
/// table was made for; a first table shrinks until it fits.
template <typename Table>
void recreateTable(Table& table, const char* name, unsigned& setting, unsigned& allocatedFor) {
    while (!resizeTable(table, name, setting)) {
        if (allocatedFor != 0) {
            setting = allocatedFor;
            return;
        }
        setting = std::max(setting / 2, 1U);
    }
    allocatedFor = setting;
}

}  // namespace

ChessPlayer::ChessPlayer(TimeControl& control, EngineInterface* engineToTell)
    : timeControl(control),
      maxCores(std::max(std::thread::hardware_concurrency(), 1U)),
      engine(engineToTell) {}

ChessPlayer::~ChessPlayer() { stopSearch(); }

void ChessPlayer::preparePlayer(bool reset) {
    if (isSearching()) return;
    if (reset || ttAllocatedFor != ttHashSizeMB) {
        recreateTable(transpositionTable, ttName, ttHashSizeMB, ttAllocatedFor);
    }
    if (reset || pawnHashAllocatedFor != pawnHashSizeMB) {
        recreateTable(pawnHashTable, pawnHashName, pawnHashSizeMB, pawnHashAllocatedFor);
    }
    if (reset || threadCount() != requestedCores) rebuildPool();
}

void ChessPlayer::rebuildPool() {
    const SearchContext shared{transpositionTable, pawnHashTable, tablebases, timeControl, *this};
    threadPool.clear();
    for (unsigned i = 0; i < requestedCores; ++i) {
        threadPool.push_back(std::make_unique<SearchThread>(i, &think, this, shared, engine));
    }
}

void ChessPlayer::setCores(unsigned requested) {
    requestedCores = std::min(requested, maxCores);
    say(formatted("# will now use %u cores (requested=%u, current=%u, max=%u)\n", requestedCores,
                  requested, threadCount(), maxCores));
}

bool ChessPlayer::setTTHashSize(unsigned megabytes) {
    ttHashSizeMB = megabytes;
    if (isSearching()) return true;
    recreateTable(transpositionTable, ttName, ttHashSizeMB, ttAllocatedFor);
    return ttHashSizeMB == megabytes;
}

bool ChessPlayer::setPawnHashSize(unsigned megabytes) {
    pawnHashSizeMB = megabytes;
    if (isSearching()) return true;
    recreateTable(pawnHashTable, pawnHashName, pawnHashSizeMB, pawnHashAllocatedFor);
    return pawnHashSizeMB == megabytes;
}

void ChessPlayer::initTablebases() {
    const std::size_t cacheBytes = std::size_t{gtbCacheSizeMB} << 20;
    if (!tablebases.initialise(gtbPath, cacheBytes)) {
        say("# ERROR: no memory for the tablebases\n");
        return;
    }
    if (const std::string notice = tablebases.takeNotice(); !notice.empty()) {
        say("# " + notice + '\n');
    }
}

void ChessPlayer::initTablebases(const std::string& path) {
    gtbPath = path.substr(0, MaxPathLength);
    initTablebases();
}

void ChessPlayer::startSearch() {
    // Thread 0 comes last: it may end at once, and stops only helpers that have started.
    for (std::size_t i = threadPool.size(); i-- > 0;) {
        threadPool[i]->startSearch();
    }
}

void ChessPlayer::stopSearch() {
    for (const auto& thread : threadPool) {
        thread->stopSearch(true);
    }
}

bool ChessPlayer::isSearching() const {
    return std::any_of(threadPool.begin(), threadPool.end(),
                       [](const auto& thread) { return thread->isBusy(); });
}

void ChessPlayer::waitUntilIdle() {
    for (const auto& thread : threadPool) {
        thread->waitUntilIdle();
    }
}

bool ChessPlayer::checkGameResult() {
    MoveList list;
    generateLegalMoves(game.board, list);
    if (list.count == 0) {
        if (!inCheck(game.board)) {
            say("1/2-1/2 {Stalemate}\n");
        } else if (game.board.sideToMove == Black) {
            say("1-0 {White wins by checkmate}\n");
        } else {
            say("0-1 {Black wins by checkmate}\n");
        }
        return true;
    }
    DrawReason reason;
    if (!isDraw(game.board, reason) || reason != DrawReason::InsufficientMaterial) return false;
    say("1/2-1/2 {Draw by insufficient material}\n");
    return true;
}

bool ChessPlayer::shouldOfferDraw(Move move) {
    game.play(move);
    MoveList list;
    generateLegalMoves(game.board, list);
    DrawReason reason;
    const bool drawn = list.count != 0 && isDraw(game.board, reason) &&
                       (reason == DrawReason::FiftyMoves || reason == DrawReason::ThirdOccurrence);
    game.takeBack();
    return drawn;
}

}  // namespace vatro
