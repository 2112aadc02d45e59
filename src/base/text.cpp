// base/text.cpp - splitting and joining, trimming, reading numbers, formatting.
#include "base/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace vatro {
namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The text without any of `characters` at its ends.
std::string_view trim(std::string_view text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
    return text.substr(0, text.find_last_not_of(characters) + 1);
}

}  // namespace

std::vector<std::string> splitTokens(std::string_view text, char separator) {
    std::vector<std::string> tokens;
    for (std::size_t end = 0; (end = text.find(separator)) != std::string_view::npos;) {
        tokens.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    if (!text.empty()) tokens.emplace_back(text);
    return tokens;
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    for (;;) {
        text = trimBlanksAndTabs(text);
        if (text.empty()) return words;
        const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

std::string joinTokens(const std::vector<std::string>& tokens, char separator) {
    std::string text;
    for (const std::string& token : tokens) {
        if (&token != &tokens.front()) text += separator;
        text += token;
    }
    return text;
}

int readNumber(std::string_view text) {
    using Limits = std::numeric_limits<int>;
    constexpr std::int64_t BeyondInt = std::int64_t{1} << 32;  // more digits change nothing
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t value = 0;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
        value = std::min(value * 10 + (text.front() - '0'), BeyondInt);
    }
    if (negative) value = -value;
    return static_cast<int>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

std::string_view trimLine(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

std::string_view trimBlanks(std::string_view text) { return trim(text, " "); }

std::string_view trimBlanksAndTabs(std::string_view text) { return trim(text, " \t"); }

std::string formatted(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

}  // namespace vatro
