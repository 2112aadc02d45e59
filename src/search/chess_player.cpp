// search/chess_player.cpp - preparing the player, starting and stopping its search.
#include "search/chess_player.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "board/draw.h"
#include "board/move_generation.h"

namespace vatro {

ChessPlayer::ChessPlayer(TimeControl& control,
                         SearchReporter& reports,
                         EngineInterface* engineToTell)
    : timeControl(control),
      maxCores(std::max(std::thread::hardware_concurrency(), 1U)),
      reporter(reports),
      engine(engineToTell) {}

ChessPlayer::~ChessPlayer() { stopSearch(); }

void ChessPlayer::preparePlayer(bool reset) {
    if (isSearching()) return;
    // Threads first: tables can do with less memory, stacks cannot.
    if (reset || threadCount() != requestedCores) rebuildPool();
    if (threadPool.empty()) return;
    const unsigned wantedTT = ttHashSizeMB;
    const unsigned wantedPawnHash = pawnHashSizeMB;
    const bool newTT = ttAllocatedFor != wantedTT;
    const bool newPawnHash = pawnHashAllocatedFor != wantedPawnHash;
    if (reset && !newTT && !newPawnHash && emptyTables()) {
        reporter.reportTableSize(TableName::TranspositionTable, transpositionTable.sizeInMB());
        reporter.reportTableSize(TableName::PawnHash, pawnHashTable.sizeInMB());
        return;
    }
    if (reset || newTT) {
        recreate(transpositionTable, TableName::TranspositionTable, ttHashSizeMB, ttAllocatedFor);
        if (ttAllocatedFor == 0) return;
    }
    if (reset || newPawnHash) {
        recreate(pawnHashTable, TableName::PawnHash, pawnHashSizeMB, pawnHashAllocatedFor);
    }
    // A table that has kept its old memory may have kept its entries.
    if (reset && ttHashSizeMB == wantedTT && pawnHashSizeMB == wantedPawnHash) tablesUsed = false;
}

void ChessPlayer::prepareFully() {
    if (isSearching()) return;
    preparePlayer(false);
    warmer.waitUntilComplete();
}

bool ChessPlayer::isReady() const {
    return !threadPool.empty() && ttAllocatedFor != 0 && pawnHashAllocatedFor != 0;
}

/// Clearing memory that is there costs less than new pages; new pages cost less now than clearing
/// memory that is not. False when they are the better choice.
bool ChessPlayer::emptyTables() {
    if (!tablesUsed) return true;
    if (!warmer.isComplete()) return false;
    transpositionTable.clear();
    pawnHashTable.clear();
    tablesUsed = false;
    return true;
}

template <typename Table>
void ChessPlayer::recreate(Table& table,
                           TableName name,
                           unsigned& setting,
                           unsigned& allocatedFor) {
    const unsigned wanted = setting;
    warmer.cancel();  // it must not touch memory that goes away
    while (!table.resize(setting)) {
        if (setting == allocatedFor) {  // it has that much, and was only to be emptied
            table.clear();
            break;
        }
        if (allocatedFor != 0 || setting <= 1) {
            reporter.reportNoMemoryForTable(name, setting);
            if (allocatedFor == 0) return;
            setting = allocatedFor;
            warmer.start();
            return;
        }
        setting /= 2;
    }
    allocatedFor = setting;
    if (setting != wanted) reporter.reportNoMemoryForTable(name, wanted);
    reporter.reportTableSize(name, table.sizeInMB());
    warmer.start();
}

void ChessPlayer::rebuildPool() {
    const SearchContext shared{transpositionTable,
                               pawnHashTable,
                               warmer.completion(),
                               tablebases,
                               timeControl,
                               limits,
                               *this,
                               reporter};
    threadPool.clear();
    for (unsigned i = 0; i < requestedCores; ++i) {
        auto thread = std::make_unique<SearchThread>(i, &think, this, shared, engine);
        if (!thread->create()) break;
        threadPool.push_back(std::move(thread));
    }
    if (threadPool.empty()) {
        reporter.reportNoThread();
    } else if (threadCount() != requestedCores) {
        const unsigned wanted = std::exchange(requestedCores, threadCount());
        reporter.reportCores({requestedCores, wanted, threadCount(), maxCores});
    }
}

void ChessPlayer::setCores(unsigned requested) {
    requestedCores = std::min(requested, maxCores);
    reporter.reportCores({requestedCores, requested, threadCount(), maxCores});
}

bool ChessPlayer::setTTHashSize(unsigned megabytes) {
    ttHashSizeMB = megabytes;
    if (isSearching()) return true;
    recreate(transpositionTable, TableName::TranspositionTable, ttHashSizeMB, ttAllocatedFor);
    return ttHashSizeMB == megabytes;
}

bool ChessPlayer::setPawnHashSize(unsigned megabytes) {
    pawnHashSizeMB = megabytes;
    if (isSearching()) return true;
    recreate(pawnHashTable, TableName::PawnHash, pawnHashSizeMB, pawnHashAllocatedFor);
    return pawnHashSizeMB == megabytes;
}

bool ChessPlayer::initTablebases() {
    const std::size_t cacheBytes = std::size_t{gtbCacheSizeMB} << 20;
    if (!tablebases.initialise(gtbPath, cacheBytes)) {
        reporter.reportNoMemoryForTablebases();
        return false;
    }
    reportTablebaseFaults();
    return true;
}

bool ChessPlayer::initTablebases(const std::string& path) {
    gtbPath = path.substr(0, MaxPathLength);
    return initTablebases();
}

bool ChessPlayer::setTablebaseCacheSize(unsigned megabytes) {
    const unsigned previous = std::exchange(gtbCacheSizeMB, megabytes);
    if (initTablebases()) return true;
    gtbCacheSizeMB = previous;
    initTablebases();
    return false;
}

void ChessPlayer::reportTablebaseFaults() {
    if (const std::string notice = tablebases.takeNotice(); !notice.empty()) {
        reporter.reportTablebaseNotice(notice);
    }
}

void ChessPlayer::startSearch() {
    tablesUsed = true;
    // One against the clock begins where its plan is printed. Any other begins here, so that its
    // time is right when startClock comes before its thread is awake.
    if (!timeControl.timed) timeControl.startSearch();
    if (threadCount() >= maxCores) warmer.pause();
    // Thread 0 comes last: it may end at once, and stops only helpers that have started.
    for (std::size_t i = threadPool.size(); i-- > 0;) {
        threadPool[i]->startSearch(game.board);
    }
}

void ChessPlayer::stopSearch() {
    for (const auto& thread : threadPool) {
        thread->requestStop(true);
    }
    waitUntilIdle();
}

void ChessPlayer::finishSearch() {
    for (const auto& thread : threadPool) {
        thread->requestStop(false);
    }
}

void ChessPlayer::discardResult() {
    if (!threadPool.empty()) threadPool[0]->searcher.discardFlag = true;
}

bool ChessPlayer::resultIsDiscarded() const { return threadPool[0]->searcher.discardFlag; }

bool ChessPlayer::isSearching() const {
    return std::any_of(threadPool.begin(), threadPool.end(),
                       [](const auto& thread) { return thread->isBusy(); });
}

void ChessPlayer::waitUntilIdle() {
    for (const auto& thread : threadPool) {
        thread->waitUntilIdle();
    }
}

GameResult ChessPlayer::gameResult() {
    MoveList list;
    generateLegalMoves(game.board, list);
    if (list.count == 0) {
        if (!inCheck(game.board)) return GameResult::Stalemate;
        return game.board.sideToMove == Black ? GameResult::WhiteMates : GameResult::BlackMates;
    }
    DrawReason reason;
    if (isDraw(game.board, reason) && reason == DrawReason::InsufficientMaterial) {
        return GameResult::InsufficientMaterial;
    }
    return GameResult::Open;
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
