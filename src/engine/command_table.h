// engine/command_table.h - one row per command.
#pragma once

#include "engine/wb_engine.h"

namespace vatro {

enum class DuringSearch { Stops, Keeps };
inline constexpr DuringSearch StopsSearch = DuringSearch::Stops;
inline constexpr DuringSearch KeepsSearch = DuringSearch::Keeps;

struct CommandEntry {
    std::string_view name;
    WBEngine::Handler handler;  // false makes the loop report the line as failed
    unsigned minArgs;
    unsigned maxArgs;
    DuringSearch duringSearch;  // whether a running search ends first, its result discarded
};

}  // namespace vatro
