// engine/configuration.cpp - reading the configuration file.
//
// A line longer than the buffer is read as several lines, so that no file needs more memory than
// the buffer, whatever it holds.
#include "engine/configuration.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/console.h"
#include "base/regular_file.h"
#include "base/text.h"
#include "engine/settings.h"

namespace vatro {
namespace {

constexpr int LineBufferSize = 1024;  // bytes, with the terminating zero; no derivation
constexpr int MaxLines = 1000;        // no derivation; a file that grows must not delay the start
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";  // some editors begin a file with it

std::string refusal(const Setting& setting, const std::string& value) {
    const std::string name(setting.name);
    if (setting.kind != Setting::Kind::Number) {
        return "# WARNING: " + name + " too long in ini file\n";
    }
    std::string bounds = "min = " + std::to_string(setting.range.min);
    if (setting.range.max != NumberRange::NoMaximum) {
        bounds += ", max = " + std::to_string(setting.range.max);
    }
    return "# WARNING: " + name + " = " + value + " out of range in ini file (" + bounds + ")\n";
}

void applySetting(std::string_view name, const std::string& value, ChessPlayer& player) {
    const Setting* const setting = findSetting(name);
    if (!setting) return;
    if (setting->accepts(value)) {
        setting->load(player, value);
    } else {
        say(refusal(*setting, value));
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
    applySetting(trimBlanksAndTabs(line.substr(0, equals)), std::string(value), player);
}

}  // namespace

void readConfiguration(std::FILE* file, ChessPlayer& player) {
    char buffer[LineBufferSize];
    for (int number = 1; std::fgets(buffer, sizeof buffer, file); ++number) {
        if (number > MaxLines) {
            say(formatted("# WARNING: ini file has more than %d lines, rest ignored\n", MaxLines));
            return;
        }
        std::string_view line(buffer);
        if (number == 1 && line.starts_with(ByteOrderMark)) {
            line.remove_prefix(ByteOrderMark.size());
        }
        applyLine(line, player);
    }
}

void readConfiguration(const char* path, ChessPlayer& player) {
    if (const FileHandle file = openRegularFile(path)) {
        readConfiguration(file.get(), player);
        return;
    }
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (exists(status) && !is_regular_file(status)) {
        say("# WARNING: ini file is no regular file, ignored\n");
    }
}

}  // namespace vatro
