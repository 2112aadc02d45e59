// src/search/think.cpp - the task of every search thread for one search.
//
// Helpers only search. Thread 0 keeps the clock, takes a random or a book move where it may, and
// hands the move over once the helpers are idle.
#include <algorithm>
#include <cstdint>

#include "board/console.h"
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
        self.threadPool[threadIndex]->searcher.iterativeDeepening(self.game.board);
    }
}

void ChessPlayer::thinkAndMove() {
    timeControl.startSearch();
    if (timeControl.timed) {
        const TimePlan plan = planTime(timeControl, game.plyCount);
        say(plan.text(timeControl, game.plyCount));
        timeControl.timeForMove = plan.max;
    }
    const Move move = chooseMove();
    stopHelpers();
    // A stop that came after the decision, or during a random or book move, counts as well.
    if (move && engine && !threadPool[0]->searcher.discardFlag) engine->makeEngineMove(move);
    timeControl.stop();
}

Move ChessPlayer::chooseMove() {
    // Analysis is for looking at a position; only play takes moves from elsewhere.
    if (timeControl.timed) {
        if (randomMoves) {
            MoveList list;
            generateLegalMoves(game.board, list);
            if (const Move move = pickRandomMove(list)) return move;
        } else if (useBook) {
            Move move = NoMove;
            std::string error;
            const bool found = book.probe(game.board, move, error);
            if (!error.empty()) say("ERROR: " + error + '\n');
            if (found) return move;
        }
    }
    giveTimeOutOfBook();
    const SearchResult result = threadPool[0]->searcher.iterativeDeepening(game.board);
    ponderMove = result.reply;
    return result.best;
}

/// The first search of a game gets more time, unless the session is about to end.
void ChessPlayer::giveTimeOutOfBook() {
    if (outOfBook) return;
    outOfBook = true;
    if (timeControl.movesPerSession != 0 &&
        planTime(timeControl, game.plyCount).remainingMoves <= FewMovesLeft) {
        return;
    }
    const double more = timeControl.timeForMove * OutOfBookFactor;
    constexpr double Most = INT32_MAX;
    timeControl.timeForMove = static_cast<std::int32_t>(std::clamp(more, -Most, Most));
    say("# out of book: corrected maxTime = " + std::to_string(timeControl.timeForMove) + '\n');
}

void ChessPlayer::stopHelpers() {
    for (std::size_t i = 1; i < threadPool.size(); ++i) {
        threadPool[i]->stopSearch(false);
    }
}

bool ChessPlayer::timeout() {
    if (!timeControl.timed || timeControl.searchTime() < timeControl.timeForMove) return false;
    say("# timeout\n");
    return true;
}

}  // namespace vatro
