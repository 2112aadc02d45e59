// egtb/generator/loaded_table.cpp - inflating all blocks of a table at once.
#include "egtb/generator/loaded_table.h"

#include <atomic>
#include <utility>

#include "egtb/generator/parallel.h"

namespace vatro::egtb {

std::string tablePath(const std::string& directory, const Material& material) {
    return pathIn(directory, material.name() + TableSuffix);
}

std::uint64_t LoadedTable::bytesOfSide(const Material& material) {
    // Blocks are read whole: the first and the last of the half may hold other values too.
    const TableHeader header = makeHeader(material, MaxBlockBits);
    return header.positionsPerSide + 2 * std::uint64_t{header.blockSize()};
}

Status LoadedTable::load(const std::string& directory,
                         const Material& material,
                         const Workers& workers,
                         std::optional<Colour> toMove) {
    constexpr std::uint64_t BlocksPerTask = 16;
    const std::string path = tablePath(directory, material);
    OpenedTable opened = TableFile::open(path);
    if (!opened.table) {
        return Status::failure(path + " " + opened.faultText() + "; " + opened.advice());
    }
    file = std::move(opened.table);
    const TableHeader& fields = file->header();
    if (fields.material != material) {
        return Status::failure(path + " is a table of " + fields.material.name() +
                               "; rename or delete it");
    }
    std::uint64_t begin = 0;
    std::uint64_t end = fields.valueCount();
    if (toMove && fields.sidesStored == ColourCount) {
        begin = *toMove == White ? 0 : fields.positionsPerSide;
        end = begin + fields.positionsPerSide;
    }
    const std::uint64_t firstBlock = begin >> fields.blockBits;
    const std::uint64_t blockCount = ((end - 1) >> fields.blockBits) + 1 - firstBlock;
    firstValue = firstBlock << fields.blockBits;
    values = LargeArray<std::uint8_t>(blockCount << fields.blockBits);
    std::atomic<bool> isWhole{true};
    const auto read = [&](std::uint64_t from, std::uint64_t to) {
        for (std::uint64_t i = from; i < to && isWhole; ++i) {
            const auto block = static_cast<std::uint32_t>(firstBlock + i);
            if (!file->readBlock(block, &values[i << fields.blockBits])) isWhole = false;
        }
    };
    parallelFor(workers, blockCount, BlocksPerTask, read);
    if (workers.areStopped()) return Status::interrupted();
    if (isWhole) return Status::good();
    return Status::failure(path + " is damaged; delete it, so that it can be made again");
}

void LoadedTable::codesOf(const Position& position,
                          bool isSwapped,
                          SquareMask kings,
                          std::array<std::uint8_t, 64>& codes) const {
    const TableHeader& fields = file->header();
    const bool isBlackToMove = position.sideToMove == Black;
    if (isSwapped || (isBlackToMove && fields.sidesStored == 1)) {
        Position other = position;
        for (; kings; kings &= kings - 1) {
            const Square64 king = lowestSquare(kings);
            other.pieces[Black].squares[0] = king;
            codes[king] = codeOf(other, isSwapped);
        }
        return;
    }
    const PositionIndex::KingLine line =
        file->numbers().index(position.sideToMove).lineOf(position);
    const std::uint64_t half = (isBlackToMove ? fields.positionsPerSide : 0) - firstValue;
    for (; kings; kings &= kings - 1) {
        const Square64 king = lowestSquare(kings);
        codes[king] = values[half + line.numberWith(king)];
    }
}

}  // namespace vatro::egtb
