// tests/egtb/test_tables.cpp - making tables for the tests.
#include "test_tables.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>

#include <gtest/gtest.h>
#include <zlib.h>

#include "egtb/generator/generator.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vatro-egtb-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    name = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(name, ignored);
}

const std::string& tablesOf(const std::vector<std::string>& endings) {
    static TemporaryDirectory directory;
    GeneratorOptions options;
    options.directory = directory.path();
    options.workers.threads = 2;
    for (const std::string& ending : endings) {
        GeneratorListener listener;
        const Status status =
            makeTables(withAllSuccessors(*parseMaterial(ending)), options, listener);
        EXPECT_TRUE(status.isGood()) << status.line();
    }
    return directory.path();
}

const std::string& smallTables() { return tablesOf({"KPK", "KBNK", "KQKR"}); }

std::vector<std::uint8_t> readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
}

void writeTableOf(const std::string& directory,
                  const std::string& ending,
                  const std::vector<std::uint8_t>& codes) {
    TableHeader header = makeHeader(*parseMaterial(ending), DefaultBlockBits);
    header.maxPlies = std::max(0, pliesOfCode(*std::max_element(codes.begin(), codes.end())));
    std::vector<std::uint8_t> index(std::size_t{header.blockCount} * IndexEntrySize);
    std::vector<std::uint8_t> blocks;
    std::vector<std::uint8_t> compressed(compressBound(header.blockSize()));
    uLongf length = 0;
    for (std::uint64_t block = 0; block < header.blockCount; ++block) {
        const std::uint64_t first = block * header.blockSize();
        const std::uint64_t count =
            std::min<std::uint64_t>(header.blockSize(), header.valueCount() - first);
        // Large tables of one value have one block over and over.
        if (block == 0 || codes.size() > 1 || count < header.blockSize()) {
            std::vector<std::uint8_t> values(count);
            for (std::uint64_t i = 0; i < count; ++i) {
                values[i] = codes[(first + i) % codes.size()];
            }
            length = compressed.size();
            ASSERT_EQ(compress(compressed.data(), &length, values.data(), values.size()), Z_OK);
        }
        blocks.insert(blocks.end(), compressed.begin(),
                      compressed.begin() + static_cast<std::ptrdiff_t>(length));
        putLittleEndian(&index[block * IndexEntrySize], length, 4);
        const auto checksum = crc32(0, compressed.data(), static_cast<uInt>(length));
        putLittleEndian(&index[block * IndexEntrySize + 4], checksum, 4);
    }
    header.fileSize = HeaderSize + index.size() + blocks.size();
    header.indexChecksum =
        static_cast<std::uint32_t>(crc32(0, index.data(), static_cast<uInt>(index.size())));
    const HeaderBytes headerBytes = encodeHeader(header);
    std::vector<std::uint8_t> bytes(headerBytes.begin(), headerBytes.end());
    bytes.insert(bytes.end(), index.begin(), index.end());
    bytes.insert(bytes.end(), blocks.begin(), blocks.end());
    writeFile(directory + "/" + ending + TableSuffix, bytes);
}

Position positionOf(const std::string& fen) {
    const std::string letters = ".PNBRQK";
    Position position;
    Square64 square = as64(A8);
    std::size_t at = 0;
    for (; fen[at] != ' '; ++at) {
        const char letter = fen[at];
        if (letter == '/') {
            square = square - 16;
        } else if (letter >= '1' && letter <= '8') {
            square = square + (letter - '0');
        } else {
            const bool isBlack = letter >= 'a';
            const auto type = letters.find(static_cast<char>(isBlack ? letter - 32 : letter));
            position.pieces[isBlack ? Black : White].add(static_cast<PieceType>(type), square);
            square = square + 1;
        }
    }
    position.sideToMove = fen[at + 1] == 'w' ? White : Black;
    return position;
}

TablebaseState::Query queryOf(const Position& position, Square64 ep) {
    TablebaseState::Query query;
    query.sideToMove = position.sideToMove;
    query.epSquare = ep;
    const auto fill = [](const Position::Pieces& pieces, auto& squares, auto& types) {
        // Lists from a board come in no particular order.
        for (int i = 0; i < pieces.count; ++i) {
            squares[i] = pieces.squares[pieces.count - 1 - i];
            types[i] = pieces.types[pieces.count - 1 - i];
        }
        squares[pieces.count] = TablebaseState::EndOfList;
        types[pieces.count] = 0;
    };
    fill(position.pieces[White], query.whiteSquares, query.whiteTypes);
    fill(position.pieces[Black], query.blackSquares, query.blackTypes);
    return query;
}

std::string answer(const TablebaseState& tables,
                   const TablebaseState::Query& query,
                   bool mayReadDisk) {
    TablebaseState::Outcome outcome;
    unsigned plies = 0;
    const bool isFound = tables.probe(query, mayReadDisk, outcome, plies);
    EXPECT_EQ(isFound, outcome != TablebaseState::Unknown);
    if (!isFound) return "none";
    if (outcome == TablebaseState::Draw) return "draw";
    return (outcome == TablebaseState::WhiteMates ? "W " : "B ") + std::to_string(plies);
}

}  // namespace vatro::egtb
