// engine/configuration.cpp - reading the configuration file.
//
// A line longer than the buffer is read as several lines, so that no file needs more memory than
// the buffer, whatever it holds.
#include "engine/configuration.h"

#include <memory>
#include <string>
#include <string_view>

#include "base/console.h"
#include "base/text.h"
#include "engine/settings.h"

namespace vatro {
namespace {

constexpr int LineBufferSize = 1024;  // bytes, with the terminating zero; no derivation

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
