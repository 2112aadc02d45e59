// engine/command_table.h - one row per command.
#pragma once

#include "engine/wb_engine.h"

namespace vatro {

/// What a command does to a search that is running.
enum DuringSearch {
    StopsSearch,  // ends it, before the handler is called; its result is discarded
    KeepsSearch,  // leaves it running: the handler changes only what may change meanwhile
};

struct CommandEntry {
    std::string_view name;
    const char* summary;        // for "help"; see there for its length
    WBEngine::Handler handler;  // false: the loop reports that the command has failed
    unsigned minArgs;
    unsigned maxArgs;
    DuringSearch duringSearch;
};

}  // namespace vatro
