// engine/command_table.cpp - the commands of the protocol and of the console.
#include "engine/command_table.h"

namespace vatro {

std::span<const CommandEntry> WBEngine::commands() {
    // Word, handler, fewest and most arguments, whether a running search ends first.
    static constexpr CommandEntry commandTable[] = {
        {"quit", &WBEngine::cmdQuit, 0, 0, StopsSearch},
        {"xboard", &WBEngine::cmdXboard, 0, 0, KeepsSearch},
        {"protover", &WBEngine::cmdProtover, 1, 1, KeepsSearch},
        {"new", &WBEngine::cmdNew, 0, 0, StopsSearch},
        {"force", &WBEngine::cmdForce, 0, 0, StopsSearch},
        {"ping", &WBEngine::cmdPing, 1, 1, KeepsSearch},
        {"usermove", &WBEngine::cmdUserMove, 1, 1, StopsSearch},
        {"go", &WBEngine::cmdGo, 0, 0, StopsSearch},
        {"playother", &WBEngine::cmdPlayOther, 0, 0, StopsSearch},
        {"setboard", &WBEngine::cmdSetBoard, 4, 6, StopsSearch},
        {"level", &WBEngine::cmdLevel, 3, 3, KeepsSearch},
        {"sd", &WBEngine::cmdSd, 1, 1, StopsSearch},
        {"time", &WBEngine::cmdTime, 1, 1, KeepsSearch},
        {"undo", &WBEngine::cmdUndo, 0, 0, StopsSearch},
        {"remove", &WBEngine::cmdRemove, 0, 0, StopsSearch},
        {"analyze", &WBEngine::cmdAnalyze, 0, 0, StopsSearch},
        {"exit", &WBEngine::cmdExit, 0, 0, StopsSearch},
        {"auto", &WBEngine::cmdAuto, 0, 1, KeepsSearch},
        {"post", &WBEngine::cmdPost, 0, 0, KeepsSearch},
        {"nopost", &WBEngine::cmdNoPost, 0, 0, KeepsSearch},
        {"cores", &WBEngine::cmdCores, 1, 1, KeepsSearch},
        {"egtpath", &WBEngine::cmdEgtPath, 2, 2, KeepsSearch},
        {"option", &WBEngine::cmdOption, 1, 1, KeepsSearch},
        {"book", &WBEngine::cmdBook, 0, 0, KeepsSearch},
        {"nobook", &WBEngine::cmdNoBook, 0, 0, KeepsSearch},
        {"perft", &WBEngine::cmdPerft, 1, 1, StopsSearch},
        {"divide", &WBEngine::cmdDivide, 1, 1, StopsSearch},
        {"selftest", &WBEngine::cmdSelfTest, 0, 0, StopsSearch},
        {"test", &WBEngine::cmdTest, 0, 1, StopsSearch},
        {"eval", &WBEngine::cmdEval, 0, 0, KeepsSearch},
        {"tune", &WBEngine::cmdTune, 1, 2, KeepsSearch},
        {"randpos", &WBEngine::cmdRandPos, 0, 2, StopsSearch},
        {"randgame", &WBEngine::cmdRandGame, 0, 0, KeepsSearch},
        {"norandgame", &WBEngine::cmdNoRandGame, 0, 0, KeepsSearch},
        {"randgames", &WBEngine::cmdRandGames, 1, 1, KeepsSearch},
    };
    return commandTable;
}

}  // namespace vatro
