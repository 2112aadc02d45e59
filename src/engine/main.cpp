// engine/main.cpp - creates the engine and runs it.
#include "engine/wb_engine.h"

int main(int argc, char* argv[]) {
    vatro::WBEngine engine;
    return engine.run(argc > 0 ? vatro::WBEngine::Args(argv + 1, argv + argc)
                               : vatro::WBEngine::Args());
}
