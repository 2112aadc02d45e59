// fuzz/config_fuzz.cpp - any bytes as a configuration file: settings stay within their ranges.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "engine/configuration.h"

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
    ChessPlayer player(timeControl, nullptr);
    readConfiguration(file, player);
    std::fclose(file);
    const bool sound = player.ttHashSizeMB - 1 < 2048 && player.pawnHashSizeMB - 1 < 2048 &&
                       player.gtbCacheSizeMB <= 256 &&
                       player.requestedCores - 1 < player.maxCores &&
                       player.gtbPath.size() <= ChessPlayer::MaxPathLength &&
                       player.book.path().size() <= PolyglotBook::MaxPathLength;
    if (!sound) std::abort();
    return 0;
}
