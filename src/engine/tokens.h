// engine/tokens.h - lines and words of text from outside.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vatro {

/// The tokens between separators. Two separators in a row enclose an empty token; after the last
/// separator only a token that is not empty counts.
std::vector<std::string> splitTokens(std::string_view text, char separator);

/// The integer that the text begins with, after white space; 0 when there is none. A number that
/// an int cannot hold gives the nearest one that it can.
int readNumber(std::string_view text);

/// The line without what ends it: cut at its first zero byte, then less one line feed, one carriage
/// return and all blanks at its end.
std::string_view trimLine(std::string_view line);

/// The text without blanks at its beginning and end.
std::string_view trimBlanks(std::string_view text);

}  // namespace vatro
