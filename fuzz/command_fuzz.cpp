// fuzz/command_fuzz.cpp - lines for the command loop, in any order, while searches run.
//
// The loop runs as in the program, on lines that are made mostly of the commands' own words. What
// would take long, eat memory or leave the directory is cut down before the loop sees it.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/text.h"
#include "engine/wb_engine.h"
#include "fuzz/working_directory.h"
#include "shell/input_reader.h"
#include "shell/settings.h"

using namespace vatro;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Dice = std::minstd_rand;
using Words = std::vector<std::string>;

constexpr std::size_t MostLines = 40;  // of a run

// --- Cutting down ---

/// The line with one of its numbers kept to `most`.
std::string limited(Words words, std::size_t index, int most) {
    words[index] = std::to_string(std::min(readNumber(words[index]), most));
    return joinTokens(words, ' ');
}

/// Whether a command may end the limit of the depth.
bool endsDepthLimit(std::string_view word) {
    constexpr std::string_view all[] = {"new", "analyze", "exit", "test", "randpos"};
    return std::find(std::begin(all), std::end(all), word) != std::end(all);
}

/// A level that gives a move a few hundredths of a second at most; its faults stay.
std::string shortLevel(Words words) {
    if (words.size() != 4) return joinTokens(words, ' ');
    const auto colons = std::count(words[2].begin(), words[2].end(), ':');
    if (colons < 2 && !words[2].empty()) words[2] = "0:01";
    words[3] = std::to_string(std::min(readNumber(words[3]), 0));
    return joinTokens(words, ' ');
}

/// The line that is sent for one of the input's; an empty one for the self-test, which takes long.
std::string harmless(std::string line) {
    const std::string_view text = trimLine(line);
    if (text == "selftest") return {};
    const Words words = splitTokens(text, ' ');
    if (words.size() < 2) return line;
    const std::string& word = words[0];
    if (word == "perft" || word == "divide") return limited(words, 1, 2);
    if (word == "sd" || word == "cores" || word == "randgames") return limited(words, 1, 3);
    if (word == "time") return limited(words, 1, 100);
    if (word == "level") return shortLevel(words);
    if (word != "randpos" && word != "test" && word != "egtpath" && word != "option") return line;
    std::replace(line.begin(), line.end(), '/', '_');
    if (word == "randpos") return limited(splitTokens(trimLine(line), ' '), 1, 20);
    const std::size_t size = line.find("SizeMB=");
    if (size == std::string::npos) return line;
    const std::size_t number = size + std::strlen("SizeMB=");
    return line.substr(0, number) + std::to_string(readNumber(line.substr(number)) % 8);
}

// --- Making lines ---

const char* const wordsAlone[] = {
    "quit",    "xboard",   "new",  "force",    "go",       "go",   "go",     "playother",
    "undo",    "remove",   "exit", "analyze",  "auto",     "auto", "post",   "nopost",
    "book",    "nobook",   "eval", "randgame", "test",     ".",    ".",      "norandgame",
    "randpos", "selftest", "",     "hard",     "usermove", "ping", "auto 1", "tune",
};
const char* const wordsWithNumber[] = {
    "protover", "ping", "sd", "time", "cores", "perft", "divide", "tune", "randgames", "randpos",
};
const char* const numbers[] = {
    "0", "1", "2", "3", "64", "-1", "100", "x", "", "2147483648", "99999999999999999999", "1 2",
};
const char* const positions[] = {
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "n1n5/PPPk4/8/8/8/8/4Kppp/5N1N b - - 0 1",
    "8/8/8/8/8/8/8/8 w - - 255 1",
    "8/8/8/8/8/8/8/K7 b - -",
    "P6k/8/8/8/8/8/8/K6p w - - 99 1",
    "kr6/8/8/8/8/8/8/K7 w - - 0 1",
    "4k3/8/8/8/8/8/4R3/4K3 w - - 0 1",
    "qqqqkqqq/8/8/8/8/8/8/QQQQKQQQ w - - 0 1",
    "7k/8/6K1/8/8/8/8/R7 w - - 0 1",
    "8/8/8/8/8/2k5/8/K1BN4 w - - 90 1",
};
/// The name of a setting; now and then one that there is not.
std::string settingName(Dice& random) {
    const std::span<const Setting> all = settings();
    const std::size_t index = random() % (all.size() + 1);
    return index < all.size() ? std::string(all[index].name) : "name";
}

template <typename Table>
std::string pick(const Table& table, Dice& random) {
    return table[random() % std::size(table)];
}

std::string randomMove(Dice& random) {
    std::string text;
    for (int i = 0; i < 2; ++i) {
        text += static_cast<char>('a' + random() % 8);
        text += static_cast<char>('1' + random() % 8);
    }
    if (random() % 8 == 0) text += "qrbnKx"[random() % 6];
    return text;
}

std::string randomLine(Dice& random) {
    switch (random() % 10) {
        case 0:
        case 1:
        case 2:
            return pick(wordsAlone, random);
        case 3:
        case 4:
            return pick(wordsWithNumber, random) + ' ' + pick(numbers, random);
        case 5:
        case 6:
            return "usermove " + randomMove(random);
        case 7:
            return "setboard " + pick(positions, random);
        case 8:
            return "option " + settingName(random) + '=' + pick(numbers, random);
        default:
            return random() % 2 ? "level 40 1 0" : "egtpath gaviota tables";
    }
}

Words splitLines(const std::uint8_t* data, std::size_t size) {
    return splitTokens({reinterpret_cast<const char*>(data), size}, '\n');
}

// --- Running ---

void sendLines(InputQueue& queue, const Words& lines) {
    LineSplitter splitter(queue);
    splitter.feed("level 0 0:01 0\nsd 2\n");
    for (const std::string& line : lines) {
        // A dot lets the search go on for a moment.
        if (line == ".") std::this_thread::sleep_for(std::chrono::milliseconds(1));
        splitter.feed(harmless(line) + '\n');
        if (endsDepthLimit(line.substr(0, line.find(' ')))) splitter.feed("sd 2\n");
    }
    splitter.finish();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    if (!std::freopen("/dev/null", "w", stdout)) std::abort();
    return 0;
}

/// Lines are added, dropped, swapped and doubled; some are changed byte by byte.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                               std::size_t size,
                                               std::size_t maxSize,
                                               unsigned seed);
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data,
                                    std::size_t size,
                                    std::size_t maxSize,
                                    unsigned seed) {
    Dice random(seed + 1);
    if (random() % 8 == 0) return LLVMFuzzerMutate(data, size, maxSize);
    Words lines = splitLines(data, size);
    const std::size_t at = lines.empty() ? 0 : random() % lines.size();
    const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
    switch (lines.empty() ? 0 : random() % 5) {
        case 0:
        case 1:
            lines.insert(place, randomLine(random));
            break;
        case 2:
            *place = randomLine(random);
            break;
        case 3:
            lines.erase(place);
            break;
        default:
            std::swap(*place, lines[random() % lines.size()]);
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line + '\n';
    }
    const std::size_t length = std::min(text.size(), maxSize);
    std::copy_n(text.begin(), length, data);
    return length;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Words lines = splitLines(data, size);
    if (lines.size() > MostLines) lines.resize(MostLines);
    static const WorkingDirectory directory("command");
    directory.enter();
    {
        const auto input = std::make_shared<InputQueue>();
        WBEngine engine(input);
        engine.startUp({});
        std::thread interface(sendLines, std::ref(*input), std::cref(lines));
        engine.runCommandLoop();
        input->abandon();
        interface.join();
    }
    directory.leave();
    return 0;
}
