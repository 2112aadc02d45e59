// uci/uci_options.cpp - "uci" and "setoption".
#include <algorithm>

#include "base/console.h"
#include "base/text.h"
#include "base/version.h"
#include "shell/settings.h"
#include "uci/uci_engine.h"

namespace vatro {
namespace {

constexpr int MostLines = 256;        // of MultiPV; no position has more moves
constexpr int MostOverheadMs = 5000;  // no derivation

std::string spin(int value, int min, int max) {
    return "spin default " + std::to_string(value) + " min " + std::to_string(min) + " max " +
           std::to_string(max);
}

std::string check(bool value) { return value ? "check default true" : "check default false"; }

std::string textField(const std::string& value) {
    return "string default " + (value.empty() ? "<empty>" : value);
}

std::string lowerCase(std::string word) {
    std::transform(word.begin(), word.end(), word.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return word;
}

/// One of the settings that `vatro.ini` has, too.
std::string describe(const char* name, const ChessPlayer& player) {
    const Setting& setting = *findSetting(name);
    const std::string value = setting.value(player);
    if (setting.kind != Setting::Kind::Number) return textField(value);
    return spin(readNumber(value), setting.range.min, setting.range.max);
}

/// Empty when it went well.
std::string change(const char* name, ChessPlayer& player, const std::string& value) {
    const Setting& setting = *findSetting(name);
    const std::string given = value == "<empty>" ? "" : value;
    if (!setting.accepts(given)) return "value out of range";
    return setting.change(player, given) ? "" : "not enough memory";
}

/// The same; the value is that of a check.
std::string changeFlag(bool& flag, const std::string& value) {
    const std::string word = lowerCase(value);
    if (word != "true" && word != "false") return "neither true nor false";
    flag = word == "true";
    return {};
}

}  // namespace

/// How an option is announced and set; `set` returns a fault, empty when it went well.
struct UciEngine::Option {
    std::string_view name;
    std::string (*describe)(const UciEngine&);
    std::string (*set)(UciEngine&, const std::string& value);
};

std::span<const UciEngine::Option> UciEngine::options() {
    using Engine = UciEngine;
    using Value = const std::string&;
    // clang-format off
    static constexpr Option table[] = {
        {"Hash",
         [](const Engine& e) { return vatro::describe("ttHashSizeMB", e.player); },
         [](Engine& e, Value value) { return change("ttHashSizeMB", e.player, value); }},
        {"PawnHash",
         [](const Engine& e) { return vatro::describe("pawnHashSizeMB", e.player); },
         [](Engine& e, Value value) { return change("pawnHashSizeMB", e.player, value); }},
        {"Threads",
         [](const Engine& e) {
             return spin(static_cast<int>(e.player.requestedCores), 1,
                         static_cast<int>(e.player.maxCores));
         },
         [](Engine& e, Value value) -> std::string {
             const int threads = readNumber(value);
             if (threads < 1) return "value out of range";
             e.player.setCores(static_cast<unsigned>(threads));
             return {};
         }},
        {"MultiPV",
         [](const Engine& e) { return spin(static_cast<int>(e.lines), 1, MostLines); },
         [](Engine& e, Value value) -> std::string {
             const int count = readNumber(value);
             if (count < 1 || count > MostLines) return "value out of range";
             e.lines = static_cast<unsigned>(count);
             return {};
         }},
        {"Ponder",  // tells the interface that "go ponder" may be sent
         [](const Engine&) { return check(false); },
         [](Engine&, Value) { return std::string(); }},
        {"OwnBook",
         [](const Engine& e) { return check(e.usesBook); },
         [](Engine& e, Value value) { return changeFlag(e.usesBook, value); }},
        {"BookFile",
         [](const Engine& e) { return vatro::describe("bookFilePath", e.player); },
         [](Engine& e, Value value) { return change("bookFilePath", e.player, value); }},
        {"TablePath",
         [](const Engine& e) { return vatro::describe("gtbPath", e.player); },
         [](Engine& e, Value value) { return change("gtbPath", e.player, value); }},
        {"TableCache",
         [](const Engine& e) { return vatro::describe("gtbCacheSizeMB", e.player); },
         [](Engine& e, Value value) { return change("gtbCacheSizeMB", e.player, value); }},
        {"Move Overhead",
         [](const Engine& e) {
             return spin(static_cast<int>(e.timeControl.reserve) * 10, 0, MostOverheadMs);
         },
         [](Engine& e, Value value) -> std::string {
             const int overhead = readNumber(value);
             if (overhead < 0 || overhead > MostOverheadMs) return "value out of range";
             e.timeControl.reserve = static_cast<std::uint32_t>((overhead + 9) / 10);
             return {};
         }},
        {"Clear Hash",
         [](const Engine&) { return std::string("button"); },
         [](Engine& e, Value) { e.player.preparePlayer(true); return std::string(); }},
        {"UCI_AnalyseMode",
         [](const Engine& e) { return check(e.analyses); },
         [](Engine& e, Value value) { return changeFlag(e.analyses, value); }},
        {"UCI_EngineAbout",
         [](const Engine&) { return textField(std::string(ProgramTitle) + ", a chess engine"); },
         [](Engine&, Value) { return std::string(); }},
    };
    // clang-format on
    return table;
}

void UciEngine::identify(const std::string& /*rest*/) {
    std::string text =
        std::string("id name ") + ProgramTitle + "\nid author the Vatro developers\n";
    for (const Option& option : options()) {
        text +=
            "option name " + std::string(option.name) + " type " + option.describe(*this) + '\n';
    }
    say(text + "uciok\n");
}

/// "setoption name NAME [value VALUE]"; either may hold blanks.
void UciEngine::setOption(const std::string& rest) {
    if (!rest.starts_with("name ")) return sayInfo("setoption: no name");
    const std::size_t valueAt = rest.find(" value");
    const std::size_t nameAt = std::string_view("name ").size();
    const std::string name(
        trimBlanksAndTabs(std::string_view(rest).substr(0, valueAt).substr(nameAt)));
    const std::string value(valueAt == std::string::npos
                                ? std::string_view()
                                : trimBlanksAndTabs(std::string_view(rest).substr(
                                      valueAt + std::string_view(" value").size())));
    for (const Option& option : options()) {
        if (lowerCase(std::string(option.name)) != lowerCase(name)) continue;
        endSearch();  // interfaces set options between searches
        const std::string fault = option.set(*this, value);
        if (!fault.empty()) sayInfo("option " + name + ": " + fault + ": " + value);
        return;
    }
    sayInfo("unknown option: " + name);
}

}  // namespace vatro
