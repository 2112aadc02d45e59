// engine/main.cpp - the program: builds the engine and runs it.
#include <new>

#include "base/console.h"
#include "engine/wb_engine.h"

int main(int argc, char* argv[]) {
    try {
        vatro::WBEngine engine;
        return engine.run(argc > 0 ? vatro::WBEngine::Args(argv + 1, argv + argc)
                                   : vatro::WBEngine::Args());
    } catch (const std::bad_alloc&) {
        vatro::endWithoutMemory();
    }
}
