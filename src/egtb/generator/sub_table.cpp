// egtb/generator/sub_table.cpp - from a finished table to lines of move values.
#include "egtb/generator/sub_table.h"

#include "egtb/generator/loaded_table.h"
#include "egtb/generator/parallel.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 1024;
constexpr int SquaresOfRank = 8;

}  // namespace

SubTable::SubTable(const Material& material,
                   Colour toMove,
                   bool parentHasPawns,
                   const std::optional<Man>& promoted)
    : ending(material),
      mover(toMove),
      keepsPawnSymmetry(parentHasPawns),
      manList(orderedMen(material)) {
    std::uint64_t stride = 1;
    for (int man = 0; man < static_cast<int>(manList.size()); ++man) {
        if (promoted && promotedIndex < 0 && manList[man] == *promoted) {
            promotedIndex = man;
            places[man] = {as64(promoted->colour == White ? A8 : A1), SquaresOfRank, stride};
        } else if (manList[man].type == Pawn) {
            places[man] = {as64(A2), 64 - 2 * SquaresOfRank, stride};
        } else {
            places[man] = {as64(A1), 64, stride};
        }
        stride *= static_cast<std::uint64_t>(places[man].squareCount);
    }
    kingStride = stride;
    for (const Square64 square : allSquares) {
        if (normalisingSymmetry(square, keepsPawnSymmetry) != 0) continue;
        kingIndex[square] = static_cast<std::uint8_t>(kingSquares.size());
        kingSquares.push_back(square);
    }
    wordCount = kingStride * kingSquares.size();
}

WordPieces SubTable::pieces(std::uint64_t word) const {
    WordPieces result{};
    result.whiteKing = kingSquares[word / kingStride];
    result.occupied = maskOf(result.whiteKing);
    std::uint64_t rest = word % kingStride;
    for (std::size_t man = 0; man < manList.size(); ++man) {
        const auto count = static_cast<std::uint64_t>(places[man].squareCount);
        result.at[man] = places[man].firstSquare + static_cast<int>(rest % count);
        result.occupied |= maskOf(result.at[man]);
        rest /= count;
    }
    result.isPossible = countSquares(result.occupied) == static_cast<int>(manList.size()) + 1;
    return result;
}

std::uint64_t SubTable::bytesToLoad() const {
    if (ending.pieceCount() == 2) return 0;
    return LoadedTable::bytesOfSide(ending.canonical());
}

Status SubTable::load(const std::string& directory, const Workers& workers) {
    const bool isBareKings = ending.pieceCount() == 2;
    const bool isSwapped = !ending.isCanonical();
    LoadedTable table;
    if (!isBareKings) {
        const Colour stored = isSwapped ? ~mover : mover;
        Status status = table.load(directory, ending.canonical(), workers, stored);
        if (!status.isGood()) return status;
        maxPlies = table.header().maxPlies;
        // The move adds a ply, and MaxPlies is not the length of a win.
        if (maxPlies >= MaxPlies) {
            return Status::failure(ending.canonical().name() + " has mates too long to build on");
        }
    }
    lines = LargeArray<ValueLine>(wordCount);
    parallelFor(workers, wordCount, WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        std::array<std::uint8_t, 64> codes{};
        for (std::uint64_t word = begin; word < end; ++word) {
            const WordPieces fixed = pieces(word);
            SquareMask kings = legalKings(manList, fixed, mover);
            if (kings == 0) continue;  // a zeroed line holds NoMoveValue
            if (!isBareKings) {
                Position position = positionOf(manList, fixed, lowestSquare(kings));
                position.sideToMove = mover;
                table.codesOf(position, isSwapped, kings, codes);
            }
            for (; kings; kings &= kings - 1) {
                const Square64 king = lowestSquare(kings);
                lines[word][king] = isBareKings ? DrawValue : valueOfMoveTo(codes[king]);
            }
        }
    });
    return workers.areStopped() ? Status::interrupted() : Status::good();
}

const ValueLine& SubTable::lineOf(Square64 whiteKing, const ManSquares& at, int& symmetry) const {
    symmetry = normalisingSymmetry(whiteKing, keepsPawnSymmetry);
    std::uint64_t word = kingStride * kingIndex[mapSquare(whiteKing, symmetry)];
    for (std::size_t man = 0; man < manList.size(); ++man) {
        const int square = mapSquare(at[man], symmetry) - places[man].firstSquare;
        word += places[man].stride * static_cast<std::uint64_t>(square);
    }
    return lines[word];
}

}  // namespace vatro::egtb
