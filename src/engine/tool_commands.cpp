// engine/tool_commands.cpp - commands that check the engine, look into it or play at random.
#include "board/console.h"
#include "engine/tokens.h"
#include "engine/wb_engine.h"
#include "eval/print_evaluation.h"
#include "tools/perft.h"
#include "tools/position_file_test.h"
#include "tools/random_games.h"
#include "tools/random_positions.h"
#include "tools/self_test.h"

namespace vatro {
namespace {

using Counter = std::uint64_t (*)(Board_0x88&, unsigned, PerftHashTable&, std::uint64_t&);

/// Counts with the engine's clock and prints the totals. False for a depth that cannot be counted.
bool runPerft(const std::string& depthText,
              Counter counter,
              const char* prefix,
              Board_0x88& board,
              PerftHashTable& table,
              TimeControl& clock) {
    const int depth = readNumber(depthText);
    if (depth < 1) return false;
    if (static_cast<unsigned>(depth) > MaxPerftDepth) {
        say("# ERROR: depth above " + std::to_string(MaxPerftDepth) + '\n');
        return false;
    }
    clock.restart();
    if (!table.prepare()) {
        clock.stop();
        say("# ERROR: no memory for the perft hash\n");
        return false;
    }
    preparePerftKeys(board);
    PerftTotals totals{};
    totals.leaves = counter(board, static_cast<unsigned>(depth), table, totals.nodes);
    clock.stop();
    totals.elapsedCs = clock.timeUsed - clock.searchStart;
    totals.hashFullPercentage = table.fillPercentage();
    say(perftTotalsText(totals, prefix));
    return true;
}

}  // namespace

bool WBEngine::cmdPerft(const Args& args) {
    return runPerft(args[0], &perftCount, "# ", player.game.board, perftHash, timeControl);
}

bool WBEngine::cmdDivide(const Args& args) {
    return runPerft(args[0], &divideRoot, "", player.game.board, perftHash, timeControl);
}

bool WBEngine::cmdSelfTest(const Args& /*args*/) {
    const bool run = runSelfTest(player.game.board, perftHash);
    if (!run) say("# ERROR: no memory for the perft hash\n");
    return cmdNew({}) && run;
}

/// "test [FILE]": loads every position of the file; a new game in any case.
bool WBEngine::cmdTest(const Args& args) {
    if (!args.empty() && !runPositionFileTest(player.game.board, args[0].c_str())) return false;
    return cmdNew({});
}

bool WBEngine::cmdEval(const Args& /*args*/) {
    say(evaluationText(player.game.board, player.pawnHashTable));
    return true;
}

/// "tune": kept for scripts that send it; there is nothing to tune.
bool WBEngine::cmdTune(const Args& /*args*/) { return true; }

/// "randpos [N [FILE]]": random positions as FENs, then a new game.
bool WBEngine::cmdRandPos(const Args& args) {
    autoPlay = false;
    engineColour = NoColour;
    forceMode = true;
    analyzeMode = false;
    if (args.empty()) {
        printBoard();
        say(randomPositionFEN() + '\n');
        return cmdNew({});
    }
    const int count = readNumber(args[0]);
    if (count < 1) return false;
    if (!writeRandomPositions(count, args.size() > 1 ? args[1].c_str() : nullptr)) return false;
    return cmdNew({});
}

/// "randgames N": statistics over random games, played on the game board: a search that runs is
/// stopped and its result discarded.
bool WBEngine::cmdRandGames(const Args& args) {
    const int games = readNumber(args[0]);
    if (games < 1) return false;
    stopSearch();
    const bool before = player.randomMoves.exchange(true);
    playRandomGames(player.game, static_cast<unsigned long>(games));
    player.randomMoves = before;
    return true;
}

}  // namespace vatro
