// fuzz/tablebase_fuzz.cpp - any bytes as a table: no crash, no endless work, no impossible answer.
//
// An even first byte has the checksums of the other bytes set right, so that the fuzzer gets past
// them.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <zlib.h>

#include "egtb/table_format.h"
#include "egtb/tablebases.h"

using namespace vatro;

namespace {

constexpr std::size_t CacheBytes = 1 << 20;
constexpr int HeaderChecksumAt = 60;
constexpr int IndexChecksumAt = 52;
constexpr int FileSizeAt = 44;
constexpr int BlockCountAt = 40;

struct Directory {
    Directory()
        : path((std::filesystem::temp_directory_path() /
                ("vatro_tablebase_fuzz_" + std::to_string(std::random_device()())))
                   .string()) {
        std::filesystem::create_directory(path);
    }
    ~Directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    const std::string path;
};

void putChecksum(std::vector<std::uint8_t>& file, std::size_t at, std::size_t from, std::size_t n) {
    egtb::putLittleEndian(&file[at], crc32(0, &file[from], static_cast<uInt>(n)), 4);
}

/// Makes size and checksums those of the bytes, as far as the bytes go.
void repair(std::vector<std::uint8_t>& file) {
    using egtb::HeaderSize;
    using egtb::IndexEntrySize;
    if (file.size() < HeaderSize) return;
    const std::uint64_t blocks = egtb::getLittleEndian(&file[BlockCountAt], 4);
    const std::uint64_t indexSize = blocks * IndexEntrySize;
    if (HeaderSize + indexSize < file.size()) {
        std::uint64_t at = HeaderSize + indexSize;
        for (std::uint64_t block = 0; block < blocks; ++block) {
            const std::size_t entry = HeaderSize + block * IndexEntrySize;
            const std::uint64_t length = egtb::getLittleEndian(&file[entry], 4);
            if (length == 0 || length > file.size() - at) break;
            putChecksum(file, entry + 4, at, length);
            at += length;
            if (at == file.size()) break;
        }
        if (indexSize > 0) putChecksum(file, IndexChecksumAt, HeaderSize, indexSize);
    }
    egtb::putLittleEndian(&file[FileSizeAt], file.size(), 8);
    putChecksum(file, HeaderChecksumAt, 0, HeaderChecksumAt);
}

/// A king each and a man of either colour, White or Black to move.
void probeAll(const TablebaseState& tables) {
    for (int type = 1; type <= 5; ++type) {
        for (int square = 8; square < 56; ++square) {
            for (const int sideToMove : {0, 1}) {
                TablebaseState::Query query;
                query.sideToMove = sideToMove;
                query.whiteSquares = {7, TablebaseState::EndOfList};
                query.whiteTypes = {6, 0};
                query.blackSquares = {58, static_cast<std::uint8_t>(square), 64};
                query.blackTypes = {6, static_cast<std::uint8_t>(type), 0};
                TablebaseState::Outcome outcome = TablebaseState::Draw;
                unsigned plies = 0;
                const bool isFound = tables.probe(query, true, outcome, plies);
                if (isFound == (outcome == TablebaseState::Unknown)) std::abort();
                if (plies > static_cast<unsigned>(egtb::MaxPlies)) std::abort();
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Directory directory;
    static TablebaseState tables;
    if (size == 0) return 0;
    std::vector<std::uint8_t> bytes(data + 1, data + size);
    if (data[0] % 2 == 0) repair(bytes);
    std::string name = "KQK";
    egtb::TableHeader header;
    if (bytes.size() >= egtb::HeaderSize) {
        egtb::HeaderBytes headerBytes;
        std::copy(bytes.begin(), bytes.begin() + egtb::HeaderSize, headerBytes.begin());
        if (egtb::decodeHeader(headerBytes, header) == egtb::TableFault::None) {
            name = header.material.name();
        }
    }
    const std::string path = directory.path + "/" + name + egtb::TableSuffix;
    {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
    }
    tables.initialise(directory.path, CacheBytes);
    probeAll(tables);
    // The file loses its second half while it is open.
    std::error_code ignored;
    std::filesystem::resize_file(path, bytes.size() / 2, ignored);
    probeAll(tables);
    tables.takeNotice();
    tables.shutDown();
    std::filesystem::remove(path, ignored);
    return 0;
}
