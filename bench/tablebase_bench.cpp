// bench/tablebase_bench.cpp - the time of a probe that finds its block in the cache, and of one
// that reads it.
//
// The table is made up: the time does not depend on what it says.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include "egtb/table_format.h"
#include "egtb/tablebases.h"

namespace vatro {
namespace {

constexpr std::size_t QueryCount = 4096;  // a power of two

/// A directory with a table of rook against pawn.
class Table {
  public:
    Table()
        : path((std::filesystem::temp_directory_path() /
                ("vatro_tablebase_bench_" + std::to_string(std::random_device()())))
                   .string()) {
        std::filesystem::create_directory(path);
        write(*egtb::parseMaterial("KRKP"));
    }
    ~Table() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    const std::string path;

  private:
    void write(const egtb::Material& material) const {
        egtb::TableHeader header = egtb::makeHeader(material, egtb::DefaultBlockBits);
        std::vector<std::uint8_t> index(std::size_t{header.blockCount} * egtb::IndexEntrySize);
        std::vector<std::uint8_t> values(header.blockSize());
        std::vector<std::uint8_t> blocks;
        std::vector<std::uint8_t> compressed(compressBound(values.size()));
        std::mt19937 random(1);
        for (std::uint32_t block = 0; block < header.blockCount; ++block) {
            // Runs of like values, as in real tables.
            for (std::size_t i = 0; i < values.size(); ++i) {
                if (i == 0 || random() % 8 == 0) {
                    values[i] = static_cast<std::uint8_t>(random() % 40);
                } else {
                    values[i] = values[i - 1];
                }
            }
            const std::uint64_t first = std::uint64_t{block} * header.blockSize();
            const auto size = std::min<std::uint64_t>(values.size(), header.valueCount() - first);
            uLongf length = compressed.size();
            if (compress(compressed.data(), &length, values.data(), size) != Z_OK) std::abort();
            std::uint8_t* entry = &index[std::size_t{block} * egtb::IndexEntrySize];
            egtb::putLittleEndian(entry, length, 4);
            const auto checksum = crc32(0, compressed.data(), static_cast<uInt>(length));
            egtb::putLittleEndian(entry + 4, checksum, 4);
            blocks.insert(blocks.end(), compressed.data(), compressed.data() + length);
        }
        header.fileSize = egtb::HeaderSize + index.size() + blocks.size();
        header.indexChecksum =
            static_cast<std::uint32_t>(crc32(0, index.data(), static_cast<uInt>(index.size())));
        const egtb::HeaderBytes headerBytes = egtb::encodeHeader(header);
        std::ofstream file(path + "/" + material.name() + egtb::TableSuffix, std::ios::binary);
        const auto put = [&](const auto& bytes) {
            std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
        };
        put(headerBytes);
        put(index);
        put(blocks);
    }
};

/// Legal positions all over the table, or near each other as in a search.
std::vector<TablebaseState::Query> makeQueries(const TablebaseState& tables, bool isSpread) {
    std::mt19937 random(2);
    std::vector<TablebaseState::Query> queries;
    while (queries.size() < QueryCount) {
        TablebaseState::Query query;
        const auto square = [&](unsigned count) {
            return static_cast<std::uint8_t>(random() % count);
        };
        query.sideToMove = static_cast<int>(random() % 2);
        query.whiteSquares = {square(64), square(64), TablebaseState::EndOfList};
        query.whiteTypes = {6, 4, 0};
        const int pawn = isSpread ? square(48) + 8 : 34;
        query.blackSquares = {square(64), static_cast<std::uint8_t>(pawn), 64};
        query.blackTypes = {6, 1, 0};
        TablebaseState::Outcome outcome;
        unsigned plies = 0;
        if (tables.probe(query, true, outcome, plies)) queries.push_back(query);
    }
    return queries;
}

const Table& table() {
    static const Table made;
    return made;
}

void probeAll(benchmark::State& state, const TablebaseState& tables, bool isSpread) {
    const std::vector<TablebaseState::Query> queries = makeQueries(tables, isSpread);
    std::size_t next = 0;
    for (auto _ : state) {
        TablebaseState::Outcome outcome;
        unsigned plies = 0;
        tables.probe(queries[next++ % QueryCount], true, outcome, plies);
        benchmark::DoNotOptimize(outcome);
        benchmark::DoNotOptimize(plies);
    }
}

void probeCached(benchmark::State& state) {
    TablebaseState tables;
    tables.initialise(table().path, 64 << 20);
    probeAll(state, tables, state.range(0) != 0);
}
BENCHMARK(probeCached)->ArgName("spread")->Arg(0)->Arg(1);

void probeUncached(benchmark::State& state) {
    TablebaseState tables;
    tables.initialise(table().path, 0);
    probeAll(state, tables, true);
}
BENCHMARK(probeUncached);

}  // namespace
}  // namespace vatro

BENCHMARK_MAIN();
