// fuzz/config_fuzz.cpp - any bytes as a configuration file: settings stay within their ranges.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "base/text.h"
#include "shell/configuration.h"
#include "shell/settings.h"

using namespace vatro;

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    if (!std::freopen("/dev/null", "w", stdout)) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The stream only reads.
    std::FILE* const file = fmemopen(const_cast<std::uint8_t*>(data), size, "r");
    if (!file) std::abort();
    TimeControl timeControl;
    SearchReporter silent;
    ChessPlayer player(timeControl, silent, nullptr);
    readConfiguration(file, player);
    std::fclose(file);
    for (const Setting& setting : settings()) {
        const std::string value = setting.value(player);
        const bool fits = setting.kind == Setting::Kind::Number
                              ? setting.range.contains(readNumber(value))
                              : value.size() <= static_cast<std::size_t>(setting.range.max);
        if (!fits) std::abort();
    }
    if (player.requestedCores > player.maxCores) std::abort();
    return 0;
}
