// fuzz/uci_fuzz.cpp - lines for the UCI command loop, in any order, while searches run.
//
// Searches are kept short and tables small before the loop sees a line, and no path leaves the
// directory.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "base/text.h"
#include "fuzz/working_directory.h"
#include "shell/input_reader.h"
#include "uci/uci_engine.h"

using namespace vatro;

namespace {

constexpr std::size_t MostLines = 30;  // of a run

/// The line that is sent for one of the input's: of an option's numbers only the first digit.
std::string harmless(std::string line) {
    if (line.find("setoption") < line.size()) {
        std::replace(line.begin(), line.end(), '/', '_');
        const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
        const auto end = std::unique(line.begin(), line.end(), [isDigit](char a, char b) {
            return isDigit(a) && isDigit(b);
        });
        line.erase(end, line.end());
    }
    return line.find("go") < line.size() ? line + " depth 2 movetime 20" : line;
}

void sendLines(InputQueue& queue, const std::vector<std::string>& lines) {
    LineSplitter splitter(queue);
    for (const std::string& line : lines) {
        splitter.feed(harmless(line) + '\n');
    }
    splitter.finish();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    if (!std::freopen("/dev/null", "w", stdout)) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto lines = splitTokens({reinterpret_cast<const char*>(data), size}, '\n');
    if (lines.size() > MostLines) lines.resize(MostLines);
    static const WorkingDirectory directory("uci");
    directory.enter();
    {
        const auto input = std::make_shared<InputQueue>();
        UciEngine engine(input);
        engine.startUp({});
        std::thread interface(sendLines, std::ref(*input), std::cref(lines));
        engine.runCommandLoop();
        input->abandon();
        interface.join();
    }
    directory.leave();
    return 0;
}
