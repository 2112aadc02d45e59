// search/think.cpp - the task of every search thread for one search.
//
// Helpers only search. Thread 0 keeps the clock, takes a random or a book move where it may, and
// hands the move over. It is busy until the helpers are idle, but the move does not wait for them:
// on a busy machine that can take as long as a short clock holds.
#include <algorithm>
#include <cstdint>

#include "board/move_generation.h"
#include "search/chess_player.h"

namespace vatro {
namespace {

constexpr double OutOfBookFactor = 1.5;    // tuned
constexpr std::uint32_t FewMovesLeft = 9;  // no extra time then; tuned

}  // namespace

void ChessPlayer::think(unsigned threadIndex, void* player) {
    auto& self = *static_cast<ChessPlayer*>(player);
    if (threadIndex == 0) {
        self.thinkAndMove();
    } else {
        self.threadPool[threadIndex]->searcher.iterativeDeepening();
    }
}

void ChessPlayer::thinkAndMove() {
    if (timeControl.timed) {
        timeControl.startSearch();
        const TimePlan plan = planTime(timeControl, game.plyCount);
        reporter.reportTimePlan(plan);
        timeControl.timeForMove = plan.max;
        keepWithinClock();
    }
    result = {};
    result = chooseMove();
    stopHelpers();
    reportTablebaseFaults();  // of files that broke during the search
    if (result.best && engine) engine->makeEngineMove(result.best);
    timeControl.noteProgress();
    timeControl.stop();
    for (std::size_t i = 1; i < threadPool.size(); ++i) {
        threadPool[i]->waitUntilIdle();
    }
    warmer.resume();
}

SearchResult ChessPlayer::chooseMove() {
    // Analysis is for looking at a position; only play takes moves from elsewhere.
    if (timeControl.timed) {
        if (randomMoves) {
            MoveList list;
            generateLegalMoves(game.board, list);
            if (const Move move = pickRandomMove(list, random)) return {move, NoMove};
        } else if (useBook) {
            Move move = NoMove;
            std::string error;
            const bool found = book.probe(game.board, random, move, error);
            if (!error.empty()) reporter.reportBookError(error);
            if (found) return {move, NoMove};
        }
    }
    giveTimeOutOfBook();
    return threadPool[0]->searcher.iterativeDeepening();
}

/// The first search of a game gets more time, unless the session is about to end.
void ChessPlayer::giveTimeOutOfBook() {
    if (outOfBook) return;
    outOfBook = true;
    const TimePlan plan = planTime(timeControl, game.plyCount);
    if (plan.movesPerSession != 0 && plan.remainingMoves <= FewMovesLeft) return;
    const double more = timeControl.timeForMove * OutOfBookFactor;
    constexpr double Most = INT32_MAX;
    timeControl.timeForMove = static_cast<std::int32_t>(std::clamp(more, -Most, Most));
    reporter.reportExtraTime(timeControl.timeForMove);
    if (timeControl.timed) keepWithinClock();
}

void ChessPlayer::keepWithinClock() {
    const auto limit = timeControl.limitTimeForMove(game.plyCount, threadCount() - 1);
    if (limit) reporter.reportClockLimit(*limit);
}

void ChessPlayer::startClock() {
    const TimePlan plan = planTime(timeControl, game.plyCount);
    reporter.reportTimePlan(plan);
    timeControl.timeForMove = timeControl.searchTime() + plan.max;
    timeControl.start();
    keepWithinClock();
}

void ChessPlayer::setTimeLeft(std::int32_t left) {
    timeControl.setTimeLeft(left, game.plyCount);
    if (timeControl.clockRunning) keepWithinClock();
}

void ChessPlayer::stopHelpers() {
    for (std::size_t i = 1; i < threadPool.size(); ++i) {
        threadPool[i]->requestStop(false);
    }
}

bool ChessPlayer::timeout() {
    timeControl.noteProgress();
    reportTablebaseFaults();
    const bool isTooLate = timeControl.timed
                               ? timeControl.searchTime() >= timeControl.timeForMove
                               : limits.timeCs > 0 && timeControl.searchTime() >= limits.timeCs;
    const bool isTooMuch = limits.nodes > 0 && sumOverThreads(&Searcher::nodes) >= limits.nodes;
    if (!isTooLate && !isTooMuch) return false;
    reporter.reportStop({StopReason::Timeout});
    return true;
}

}  // namespace vatro
