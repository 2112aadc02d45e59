// uci/go_command.cpp - reading "go".
#include "uci/go_command.h"

#include <algorithm>
#include <charconv>

#include "board/move_generation.h"
#include "search/searcher.h"

namespace vatro {
namespace {

/// The number within bounds; the lower bound where there is no number.
template <typename Number>
Number readBounded(std::string_view text, Number least, Number most) {
    Number number = least;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault == std::errc::result_out_of_range) return text.starts_with('-') ? least : most;
    return std::clamp(number, least, most);
}

constexpr std::int64_t MostMs = std::int64_t{INT32_MAX} * 10;

}  // namespace

std::int32_t toCentiseconds(std::int64_t milliseconds) {
    return static_cast<std::int32_t>(
        std::clamp(milliseconds / 10, -std::int64_t{INT32_MAX}, std::int64_t{INT32_MAX}));
}

GoCommand readGoCommand(const std::vector<std::string>& words,
                        const Board_0x88& board,
                        std::vector<std::string>& faults) {
    constexpr unsigned MostMoves = 1000;  // no derivation
    GoCommand command;
    bool listsMoves = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const std::string_view value = i + 1 < words.size() ? words[i + 1] : std::string_view();
        const auto milliseconds = [value](std::int64_t least) {
            return readBounded<std::int64_t>(value, least, MostMs);
        };
        const std::size_t here = i++;  // a value follows most words
        if (word == "wtime") {
            command.timeLeftMs[White] = milliseconds(-MostMs);
        } else if (word == "btime") {
            command.timeLeftMs[Black] = milliseconds(-MostMs);
        } else if (word == "winc") {
            command.incrementMs[White] = milliseconds(0);
        } else if (word == "binc") {
            command.incrementMs[Black] = milliseconds(0);
        } else if (word == "movestogo") {
            command.movesToGo = readBounded(value, 0U, MostMoves);
        } else if (word == "depth") {
            command.depth = readBounded(value, 0U, static_cast<unsigned>(Searcher::MaxDepth));
        } else if (word == "nodes") {
            command.nodes = readBounded<std::uint64_t>(value, 0, UINT64_MAX);
        } else if (word == "mate") {
            command.mateMoves = readBounded(value, 0U, MostMoves);
        } else if (word == "movetime") {
            command.moveTimeMs = milliseconds(1);
        } else {
            i = here;  // stands alone
            if (word == "infinite") command.infinite = true;
            if (word == "ponder") command.ponder = true;
            if (word == "infinite" || word == "ponder") {
                listsMoves = false;
            } else if (word == "searchmoves") {
                listsMoves = true;
            } else if (listsMoves) {
                if (const Move move = findLegalMove(board, word)) {
                    command.searchMoves.push_back(move);
                } else {
                    faults.push_back("not a legal move: " + word);
                }
            }
            continue;
        }
        listsMoves = false;
    }
    return command;
}

}  // namespace vatro
