// shell/settings.h - the settings that a user can change, one row each.
//
// `vatro.ini`, the command "option", the feature lines and a test of the README read this table.
#pragma once

#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "search/chess_player.h"

namespace vatro {

/// Both bounds included.
struct NumberRange {
    static constexpr int NoMaximum = std::numeric_limits<int>::max();

    int min;
    int max;

    constexpr bool contains(int number) const { return number >= min && number <= max; }
};

struct Setting {
    enum class Kind {
        Number,
        Path,     // refused when it is too long
        PathList  // directories separated by ';'; cut when it is too long
    };
    enum class Effect {
        AtOnce,
        NextSearch,  // a search that runs keeps the old value
        AtStart      // only in `vatro.ini`; no option
    };

    std::string_view name;
    Kind kind;
    Effect effect;
    std::string defaultValue;
    NumberRange range;  // of the number, or of the path's length in characters
    std::string (*value)(const ChessPlayer&);
    /// Sets an accepted value before the player's first preparation.
    void (*load)(ChessPlayer&, const std::string&);
    /// Sets an accepted value while the program runs. False when there is no memory for it, which
    /// the player has reported. Null when `effect` is AtStart.
    bool (*change)(ChessPlayer&, const std::string&);

    bool isOption() const { return effect != Effect::AtStart; }
    bool accepts(const std::string& text) const;
    /// The accepted text as the program takes it: of a number no more than the leading integer.
    std::string normalised(const std::string& text) const;
};

/// In the order of the feature lines.
std::span<const Setting> settings();

/// Null for an unknown name.
const Setting* findSetting(std::string_view name);

}  // namespace vatro
