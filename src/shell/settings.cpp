// shell/settings.cpp - the table of settings.
//
// Adding a setting is a row here and one in the README.
#include "shell/settings.h"

#include <algorithm>

#include "base/text.h"

namespace vatro {
namespace {

using enum Setting::Kind;
using enum Setting::Effect;

constexpr NumberRange hashSizeRange{1, 2048};  // megabytes
constexpr NumberRange cacheSizeRange{0, 256};  // megabytes

/// The number of an accepted text.
unsigned number(const std::string& text) { return static_cast<unsigned>(readNumber(text)); }

template <unsigned ChessPlayer::*Field>
std::string fieldText(const ChessPlayer& player) {
    return std::to_string(player.*Field);
}

template <unsigned ChessPlayer::*Field>
void loadField(ChessPlayer& player, const std::string& text) {
    player.*Field = number(text);
}

template <bool (ChessPlayer::*Resize)(unsigned)>
bool changeTableSize(ChessPlayer& player, const std::string& text) {
    return (player.*Resize)(number(text));
}

bool changeCacheSize(ChessPlayer& player, const std::string& text) {
    return player.setTablebaseCacheSize(number(text));
}

std::string tablebasePath(const ChessPlayer& player) { return player.gtbPath; }

void loadTablebasePath(ChessPlayer& player, const std::string& path) {
    player.gtbPath = path.substr(0, ChessPlayer::MaxPathLength);
}

bool changeTablebasePath(ChessPlayer& player, const std::string& path) {
    player.initTablebases(path);
    return true;
}

std::string bookPath(const ChessPlayer& player) { return player.book.path(); }

void loadBookPath(ChessPlayer& player, const std::string& path) { player.book.setPath(path); }

bool changeBookPath(ChessPlayer& player, const std::string& path) {
    player.book.setPath(path);
    return true;
}

void loadCores(ChessPlayer& player, const std::string& text) { player.setCores(number(text)); }

}  // namespace

bool Setting::accepts(const std::string& text) const {
    switch (kind) {
        case Number:
            return range.contains(readNumber(text));
        case Path:
            return text.size() <= static_cast<std::size_t>(range.max);
        case PathList:
            break;
    }
    return true;
}

std::string Setting::normalised(const std::string& text) const {
    return kind == Number ? std::to_string(readNumber(text)) : text;
}

std::span<const Setting> settings() {
    using Player = ChessPlayer;
    using std::to_string;
    // Name, kind, when a change takes effect, default, range;
    // the value, setting it from the file, changing it by "option".
    // clang-format off
    static const Setting table[] = {
        {"ttHashSizeMB", Number, NextSearch, to_string(Player::DefaultTTHashSizeMB),
         hashSizeRange,
         &fieldText<&Player::ttHashSizeMB>, &loadField<&Player::ttHashSizeMB>,
         &changeTableSize<&Player::setTTHashSize>},
        {"pawnHashSizeMB", Number, NextSearch, to_string(Player::DefaultPawnHashSizeMB),
         hashSizeRange,
         &fieldText<&Player::pawnHashSizeMB>, &loadField<&Player::pawnHashSizeMB>,
         &changeTableSize<&Player::setPawnHashSize>},
        {"gtbCacheSizeMB", Number, AtOnce, to_string(Player::DefaultTablebaseCacheMB),
         cacheSizeRange,
         &fieldText<&Player::gtbCacheSizeMB>, &loadField<&Player::gtbCacheSizeMB>,
         &changeCacheSize},
        {"gtbPath", PathList, AtOnce, Player::DefaultTablebasePath,
         {0, Player::MaxPathLength},
         &tablebasePath, &loadTablebasePath, &changeTablebasePath},
        {"bookFilePath", Path, AtOnce, PolyglotBook::DefaultPath,
         {0, PolyglotBook::MaxPathLength},
         &bookPath, &loadBookPath, &changeBookPath},
        {"numberOfCores", Number, AtStart, to_string(Player::DefaultCores),
         {1, NumberRange::NoMaximum},
         &fieldText<&Player::requestedCores>, &loadCores, nullptr},
    };
    // clang-format on
    return table;
}

const Setting* findSetting(std::string_view name) {
    const std::span<const Setting> all = settings();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [name](const Setting& row) { return row.name == name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace vatro
