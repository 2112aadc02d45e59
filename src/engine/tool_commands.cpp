// engine/tool_commands.cpp - commands that test the engine, show its evaluation or play at random.
#include <chrono>

#include "base/console.h"
#include "base/text.h"
#include "engine/wb_engine.h"
#include "eval/print_evaluation.h"
#include "tools/perft.h"
#include "tools/position_file_test.h"
#include "tools/random_games.h"
#include "tools/random_positions.h"
#include "tools/self_test.h"

namespace vatro {
namespace {

using PerftFunction =
    std::uint64_t (*)(Board_0x88&, unsigned, PerftHashTable&, std::uint64_t&, StopCheck&);

/// Counts and prints the totals. False when the depth is out of range
/// or there is no memory for the table.
bool runPerft(const std::string& depthText,
              PerftFunction count,
              const char* prefix,
              Board_0x88& board,
              PerftHashTable& table,
              StopCheck stop) {
    const int depth = readNumber(depthText);
    if (depth < 1) return false;
    if (static_cast<unsigned>(depth) > MaxPerftDepth) {
        say("# ERROR: depth above " + std::to_string(MaxPerftDepth) + '\n');
        return false;
    }
    const std::uint32_t start = clockNow();
    if (!table.prepare()) {
        say("# ERROR: no memory for the perft hash\n");
        return false;
    }
    preparePerftKeys(board);
    PerftTotals totals{};
    totals.leaves = count(board, static_cast<unsigned>(depth), table, totals.nodes, stop);
    totals.elapsedCs = clockNow() - start;
    totals.hashFullPercentage = table.fillPercentage();
    say((stop.hasStopped() ? InterruptedLine : "") + perftTotalsText(totals, prefix));
    return true;
}

}  // namespace

StopCheck WBEngine::stopCheck() const {
    // What a script has sent in one go reaches us within this time, on a busy machine too.
    constexpr std::chrono::milliseconds Grace(100);
    const auto latest = InputQueue::Clock::now() + Grace;
    return StopCheck([queue = input.get(), latest] { return queue->endCameAfter(latest); });
}

/// "perft DEPTH": leaves of the move tree.
bool WBEngine::cmdPerft(const Args& args) {
    return runPerft(args[0], &perftCount, "# ", player.game.board, perftHash, stopCheck());
}

/// "divide DEPTH": leaves of the move tree below each move.
bool WBEngine::cmdDivide(const Args& args) {
    return runPerft(args[0], &divideRoot, "", player.game.board, perftHash, stopCheck());
}

/// "selftest": counts positions with known results, then starts a new game.
bool WBEngine::cmdSelfTest(const Args& /*args*/) {
    StopCheck stop = stopCheck();
    const bool hasRun = runSelfTest(player.game.board, perftHash, stop);
    if (!hasRun) say("# ERROR: no memory for the perft hash\n");
    return cmdNew({}) && hasRun;
}

/// "test [FILE]": loads every position of the file, then starts a new game.
bool WBEngine::cmdTest(const Args& args) {
    StopCheck stop = stopCheck();
    if (!args.empty() && !runPositionFileTest(player.game.board, args[0].c_str(), stop)) {
        return false;
    }
    return cmdNew({});
}

/// "eval": the evaluation of the position, term by term.
bool WBEngine::cmdEval(const Args& /*args*/) {
    player.tablesUsed = true;
    say(evaluationText(player.game.board, player.pawnHashTable));
    return true;
}

/// "tune": does nothing; kept for scripts that send it.
bool WBEngine::cmdTune(const Args& /*args*/) { return true; }

/// "randpos [N [FILE]]": writes random positions as FENs, then starts a new game.
bool WBEngine::cmdRandPos(const Args& args) {
    autoPlay = false;
    engineColour = NoColour;
    forceMode = true;
    leaveAnalysis();
    if (args.empty()) {
        printBoard();
        say(randomPositionFEN(random) + '\n');
        return cmdNew({});
    }
    const int count = readNumber(args[0]);
    if (count < 1) return false;
    StopCheck stop = stopCheck();
    if (!writeRandomPositions(count, args.size() > 1 ? args[1].c_str() : nullptr, random, stop)) {
        return false;
    }
    return cmdNew({});
}

/// "randgames N": statistics of random games. They are played on the game board, so a valid N ends
/// a running search, although the command's row lets it run.
bool WBEngine::cmdRandGames(const Args& args) {
    const int games = readNumber(args[0]);
    if (games < 1) return false;
    stopSearch();
    const bool hadRandomMoves = player.randomMoves.exchange(true);
    StopCheck stop = stopCheck();
    playRandomGames(player.game, static_cast<unsigned long>(games), random, stop);
    player.randomMoves = hadRandomMoves;
    gameOver = false;  // the start position is on the board
    const bool searchesBothSides = analyzeMode || autoPlay;
    if (searchesBothSides && engineColour != NoColour) engineColour = player.game.board.toMove();
    return true;
}

}  // namespace vatro
