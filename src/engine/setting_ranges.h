// engine/setting_ranges.h - what numbers the configuration file and the options accept.
#pragma once

namespace vatro {

/// Both bounds included.
struct NumberRange {
    int min;
    int max;

    constexpr bool contains(int number) const { return number >= min && number <= max; }
};

inline constexpr NumberRange hashSizeRange{1, 2048};  // megabytes
inline constexpr NumberRange cacheSizeRange{0, 256};  // megabytes

}  // namespace vatro
