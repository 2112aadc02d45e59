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

/// Where the text has the word between blanks; npos when it has not.
std::size_t findWord(std::string_view text, std::string_view word) {
    const auto isBlank = [text](std::size_t at) { return text[at] == ' ' || text[at] == '\t'; };
    for (std::size_t at = 0; (at = text.find(word, at)) != text.npos; ++at) {
        const std::size_t end = at + word.size();
        if ((at == 0 || isBlank(at - 1)) && (end == text.size() || isBlank(end))) return at;
    }
    return text.npos;
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
    constexpr std::string_view NameWord = "name";
    constexpr std::string_view ValueWord = "value";
    std::string_view text = rest;
    if (findWord(text, NameWord) != 0) return sayInfo("setoption: no name");
    text.remove_prefix(NameWord.size());
    const std::size_t valueAt = std::min(findWord(text, ValueWord), text.size());
    const std::string name = joinTokens(wordsOf(text.substr(0, valueAt)), ' ');
    text.remove_prefix(std::min(valueAt + ValueWord.size(), text.size()));
    const std::string value(trimBlanksAndTabs(text));
    for (const Option& option : options()) {
        if (lowerCase(std::string(option.name)) != lowerCase(name)) continue;
        endSearch();  // interfaces set options between searches
        const std::string fault = option.set(*this, value);
        if (!fault.empty()) {
            sayInfo(formatted("option %s: %s: %s", name.c_str(), fault.c_str(), value.c_str()));
        }
        return;
    }
    sayInfo("unknown option: " + name);
}

}  // namespace vatro
