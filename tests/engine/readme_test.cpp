// tests/engine/readme_test.cpp - the README's tables of commands and options tell the truth.
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/text.h"
#include "engine/command_table.h"
#include "shell/settings.h"

namespace vatro {
namespace {

using Cells = std::vector<std::string>;

/// The rows of the first table below a heading, without its two heading rows.
std::vector<Cells> tableBelow(const std::string& heading) {
    std::ifstream readme(VATRO_README);
    std::string line;
    while (std::getline(readme, line) && line != "## " + heading) {
    }
    std::vector<Cells> rows;
    while (std::getline(readme, line) && !line.starts_with("## ")) {
        if (!line.starts_with("| `")) continue;
        Cells cells;
        for (const std::string& cell : splitTokens(line.substr(1), '|')) {
            cells.emplace_back(trimBlanks(cell));
        }
        rows.push_back(cells);
    }
    return rows;
}

/// As the README writes names and paths.
std::string asCode(std::string_view text) { return '`' + std::string(text) + '`'; }

std::string rangeText(const Setting& setting) {
    const auto& [min, max] = setting.range;
    if (setting.kind != Setting::Kind::Number) return std::to_string(max) + " characters";
    if (max == NumberRange::NoMaximum) return std::to_string(min) + " or more";
    return std::to_string(min) + " to " + std::to_string(max);
}

std::string effectText(const Setting& setting) {
    switch (setting.effect) {
        case Setting::Effect::AtOnce:
            return "at once";
        case Setting::Effect::NextSearch:
            return "next search";
        case Setting::Effect::AtStart:
            break;
    }
    return "only in `vatro.ini`";
}

/// The commands of a cell such as "`undo` *, `remove` *", and whether they are starred.
std::map<std::string, bool> commandsOf(const std::string& cell) {
    std::map<std::string, bool> commands;
    for (const std::string& text : splitTokens(cell, ',')) {
        const Cells parts = splitTokens(trimBlanks(text), '`');  // "", the word, " *" or nothing
        commands[parts.at(1)] = parts.size() > 2;
    }
    return commands;
}

TEST(Readme, ListsTheSettings) {
    std::vector<Cells> expected;
    for (const Setting& setting : settings()) {
        const bool isNumber = setting.kind == Setting::Kind::Number;
        expected.push_back({asCode(setting.name), rangeText(setting),
                            isNumber ? setting.defaultValue : asCode(setting.defaultValue),
                            effectText(setting)});
    }
    std::vector<Cells> rows = tableBelow("Options and `vatro.ini`");
    for (Cells& cells : rows) {
        cells.resize(expected.front().size());  // the last column explains
    }
    EXPECT_EQ(expected, rows);
}

TEST(Readme, ListsTheCommandsAndStarsThoseThatEndASearch) {
    std::map<std::string, bool> expected;
    for (const CommandEntry& entry : WBEngine::commands()) {
        expected[std::string(entry.name)] = entry.duringSearch == StopsSearch;
    }
    std::map<std::string, bool> listed;
    for (const Cells& cells : tableBelow("Commands")) {
        listed.merge(commandsOf(cells.at(0)));
    }
    EXPECT_EQ(expected, listed);
}

}  // namespace
}  // namespace vatro
