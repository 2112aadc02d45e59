// engine/options.cpp - settings that an interface or a user changes while the engine runs.
#include <algorithm>
#include <iterator>

#include "board/console.h"
#include "engine/setting_ranges.h"
#include "engine/tokens.h"
#include "engine/wb_engine.h"

namespace vatro {
namespace {

struct NumberOption {
    std::string_view name;
    NumberRange range;
    bool (*apply)(ChessPlayer&, unsigned);
};

constexpr NumberOption numberOptions[] = {
    {"ttHashSizeMB", hashSizeRange,
     [](ChessPlayer& player, unsigned size) { return player.setTTHashSize(size); }},
    {"pawnHashSizeMB", hashSizeRange,
     [](ChessPlayer& player, unsigned size) { return player.setPawnHashSize(size); }},
    {"gtbCacheSizeMB", cacheSizeRange,
     [](ChessPlayer& player, unsigned size) {
         player.gtbCacheSizeMB = size;
         player.initTablebases();
         return true;
     }},
};

struct PathOption {
    std::string_view name;
    std::size_t maxLength;  // a longer path is refused
    void (*apply)(ChessPlayer&, const std::string&);
};

constexpr PathOption pathOptions[] = {
    {"gtbPath",
     std::string::npos,  // cut by the player
     [](ChessPlayer& player, const std::string& path) { player.initTablebases(path); }},
    {"bookFilePath", PolyglotBook::MaxPathLength,
     [](ChessPlayer& player, const std::string& path) { player.book.setPath(path); }},
};

template <typename Table>
auto find(const Table& table, std::string_view name) {
    const auto* const found = std::find_if(std::begin(table), std::end(table),
                                           [name](const auto& row) { return row.name == name; });
    return found == std::end(table) ? nullptr : found;
}

bool refuse(const std::string& name, const std::string& value) {
    say("Error (illegal value for '" + name + "' option): " + value + '\n');
    return false;
}

void confirm(const std::string& name, const std::string& value) {
    say("# setting option: " + name + '=' + value + '\n');
}

}  // namespace

/// "option NAME=VALUE".
bool WBEngine::cmdOption(const Args& args) {
    std::vector<std::string> tokens = splitTokens(args[0], '=');
    tokens.resize(std::max<std::size_t>(tokens.size(), 2));
    const std::string& name = tokens[0];
    const std::string& value = tokens[1];
    if (const NumberOption* const option = find(numberOptions, name)) {
        const int number = readNumber(value);
        if (value.empty() || !option->range.contains(number)) return refuse(name, value);
        confirm(name, std::to_string(number));
        return option->apply(player, static_cast<unsigned>(number));
    }
    if (const PathOption* const option = find(pathOptions, name)) {
        if (value.empty() || value.size() > option->maxLength) return refuse(name, value);
        confirm(name, value);
        option->apply(player, value);
        return true;
    }
    say("Error (unknown option name): " + name + '\n');
    return false;
}

/// "cores N": threads for the next search.
bool WBEngine::cmdCores(const Args& args) {
    const int cores = readNumber(args[0]);
    if (cores < 1) return false;
    player.setCores(static_cast<unsigned>(cores));
    return true;
}

/// "egtpath TYPE PATH": where the endgame tablebases are.
bool WBEngine::cmdEgtPath(const Args& args) {
    const std::string& type = args[0];
    const std::string& path = args[1];
    if (type != "gaviota") {
        say("# invalid TB type: " + type + '\n');
        return false;
    }
    say("# initializing TB: type=" + type + " path=" + path + '\n');
    player.initTablebases(path);
    return true;
}

}  // namespace vatro
