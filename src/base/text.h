// base/text.h - cutting input text into lines, words and numbers; formatting output text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vatro {

/// The tokens between separators. There is an empty token before a leading separator and between
/// two adjacent ones, but none after a separator that ends the text.
std::vector<std::string> splitTokens(std::string_view text, char separator);

/// The words between spaces and tabs.
std::vector<std::string> wordsOf(std::string_view text);

/// The tokens with one separator between each two.
std::string joinTokens(const std::vector<std::string>& tokens, char separator);

/// The decimal integer at the beginning of the text, after white space; 0 when there is none. A
/// number beyond the range of int gives the nearest bound.
int readNumber(std::string_view text);

/// The line without its ending: cut at the first zero byte, then one line feed, one carriage return
/// and all trailing blanks removed.
std::string_view trimLine(std::string_view line);

/// The text without leading and trailing blanks. A blank is the space character alone.
std::string_view trimBlanks(std::string_view text);

/// The same for spaces and tabs.
std::string_view trimBlanksAndTabs(std::string_view text);

/// The text that printf would print.
#if defined(__GNUC__)
[[gnu::format(printf, 1, 2)]]
#endif
std::string
formatted(const char* format, ...);

}  // namespace vatro
