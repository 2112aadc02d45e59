// engine/configuration.cpp - reading the configuration file.
//
// A line longer than the buffer is taken in pieces, so a file of any size or content needs no more
// memory than the buffer.
#include "engine/configuration.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "board/console.h"
#include "engine/setting_ranges.h"
#include "engine/tokens.h"

namespace vatro {
namespace {

constexpr int LineBufferSize = 1024;  // bytes, with the closing zero
constexpr int NoMaximum = std::numeric_limits<int>::max();

struct NumberKey {
    std::string_view name;
    NumberRange range;
    void (*apply)(ChessPlayer&, unsigned);
};

constexpr NumberKey numberKeys[] = {
    {"numberOfCores",
     {1, NoMaximum},
     [](ChessPlayer& player, unsigned cores) { player.setCores(cores); }},
    {"ttHashSizeMB", hashSizeRange,
     [](ChessPlayer& player, unsigned size) { player.ttHashSizeMB = size; }},
    {"pawnHashSizeMB", hashSizeRange,
     [](ChessPlayer& player, unsigned size) { player.pawnHashSizeMB = size; }},
    {"gtbCacheSizeMB", cacheSizeRange,
     [](ChessPlayer& player, unsigned size) { player.gtbCacheSizeMB = size; }},
};

void warnAboutRange(const NumberKey& key, const std::string& value) {
    std::string bounds = "min = " + std::to_string(key.range.min);
    if (key.range.max != NoMaximum) bounds += ", max = " + std::to_string(key.range.max);
    say("# WARNING: " + std::string(key.name) + " = " + value + " out of range in ini file (" +
        bounds + ")\n");
}

void applySetting(std::string_view name, const std::string& value, ChessPlayer& player) {
    if (name == "gtbPath") {
        player.gtbPath = value.substr(0, ChessPlayer::MaxPathLength);
        return;
    }
    if (name == "bookFilePath") {
        if (value.size() <= PolyglotBook::MaxPathLength) {
            player.book.setPath(value);
        } else {
            say("# WARNING: bookFilePath too long in ini file\n");
        }
        return;
    }
    const auto* const key = std::find_if(std::begin(numberKeys), std::end(numberKeys),
                                         [name](const NumberKey& row) { return row.name == name; });
    if (key == std::end(numberKeys)) return;
    const int number = readNumber(value);
    if (key->range.contains(number)) {
        key->apply(player, static_cast<unsigned>(number));
    } else {
        warnAboutRange(*key, value);
    }
}

void applyLine(std::string_view text, ChessPlayer& player) {
    const std::string_view line = trimBlanks(trimLine(text));
    const std::size_t equals = line.find('=');
    if (line.starts_with('#') || equals == std::string_view::npos) return;
    std::string_view value = trimBlanks(line.substr(equals + 1));
    if (value.size() > 1 && value.starts_with('"') && value.ends_with('"')) {
        value = value.substr(1, value.size() - 2);
    }
    applySetting(trimBlanks(line.substr(0, equals)), std::string(value), player);
}

}  // namespace

void readConfiguration(std::FILE* file, ChessPlayer& player) {
    char buffer[LineBufferSize];
    while (std::fgets(buffer, sizeof buffer, file)) {
        applyLine(buffer, player);
    }
}

void readConfiguration(const char* path, ChessPlayer& player) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "r"), &std::fclose);
    if (file) readConfiguration(file.get(), player);
}

}  // namespace vatro
