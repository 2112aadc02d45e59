// engine/command_table.cpp - the commands of the protocol and of the console.
#include "engine/command_table.h"

namespace vatro {

std::span<const CommandEntry> WBEngine::commands() {
    // Word, what it does, handler, fewest and most arguments, whether a running search ends first.
    static constexpr CommandEntry commandTable[] = {
        {"quit", "end the program", &WBEngine::cmdQuit, 0, 0, StopsSearch},
        {"xboard", "show no prompts", &WBEngine::cmdXboard, 0, 0, KeepsSearch},
        {"protover", "list features and options", &WBEngine::cmdProtover, 1, 1, KeepsSearch},
        {"new", "start a new game", &WBEngine::cmdNew, 0, 0, StopsSearch},
        {"force", "play neither side", &WBEngine::cmdForce, 0, 0, StopsSearch},
        {"ping", "answer with pong", &WBEngine::cmdPing, 1, 1, KeepsSearch},
        {"usermove", "make a move, as e2e4 does", &WBEngine::cmdUserMove, 1, 1, StopsSearch},
        {"go", "play the side to move", &WBEngine::cmdGo, 0, 0, StopsSearch},
        {"playother", "play the other side", &WBEngine::cmdPlayOther, 0, 0, StopsSearch},
        {"setboard", "set a position, as FEN", &WBEngine::cmdSetBoard, 4, 6, StopsSearch},
        {"level", "set the clock: level 40 5 0", &WBEngine::cmdLevel, 3, 3, KeepsSearch},
        {"sd", "limit the search depth", &WBEngine::cmdSd, 1, 1, StopsSearch},
        {"time", "set Vatro's time (1/100 s)", &WBEngine::cmdTime, 1, 1, KeepsSearch},
        {"undo", "take back one move", &WBEngine::cmdUndo, 0, 0, StopsSearch},
        {"remove", "take back two moves", &WBEngine::cmdRemove, 0, 0, StopsSearch},
        {"analyze", "analyse until exit", &WBEngine::cmdAnalyze, 0, 0, StopsSearch},
        {"exit", "end analysis", &WBEngine::cmdExit, 0, 0, StopsSearch},
        {"auto", "play both sides", &WBEngine::cmdAuto, 0, 1, KeepsSearch},
        {"post", "show the thinking", &WBEngine::cmdPost, 0, 0, KeepsSearch},
        {"nopost", "hide the thinking", &WBEngine::cmdNoPost, 0, 0, KeepsSearch},
        {"cores", "set the search threads", &WBEngine::cmdCores, 1, 1, KeepsSearch},
        {"egtpath", "open tablebases", &WBEngine::cmdEgtPath, 2, 2, KeepsSearch},
        {"option", "set an option: name=value", &WBEngine::cmdOption, 1, 1, KeepsSearch},
        {"book", "use the opening book", &WBEngine::cmdBook, 0, 0, KeepsSearch},
        {"nobook", "use no opening book", &WBEngine::cmdNoBook, 0, 0, KeepsSearch},
        {"perft", "count the move tree", &WBEngine::cmdPerft, 1, 1, StopsSearch},
        {"divide", "the same for each move", &WBEngine::cmdDivide, 1, 1, StopsSearch},
        {"selftest", "test the move generator", &WBEngine::cmdSelfTest, 0, 0, StopsSearch},
        {"test", "check a file of FENs", &WBEngine::cmdTest, 0, 1, StopsSearch},
        {"eval", "explain the evaluation", &WBEngine::cmdEval, 0, 0, KeepsSearch},
        {"tune", "do nothing", &WBEngine::cmdTune, 1, 2, KeepsSearch},
        {"randpos", "write random positions", &WBEngine::cmdRandPos, 0, 2, StopsSearch},
        {"randgame", "play random moves", &WBEngine::cmdRandGame, 0, 0, KeepsSearch},
        {"norandgame", "search for moves again", &WBEngine::cmdNoRandGame, 0, 0, KeepsSearch},
        {"randgames", "count in random games", &WBEngine::cmdRandGames, 1, 1, KeepsSearch},
    };
    return commandTable;
}

}  // namespace vatro
