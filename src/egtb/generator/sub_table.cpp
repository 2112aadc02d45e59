// src/egtb/generator/sub_table.cpp - turning a finished table into lines of move values.
#include "egtb/generator/sub_table.h"

#include "egtb/generator/loaded_table.h"
#include "egtb/generator/parallel.h"
#include "egtb/symmetry.h"

namespace vatro::egtb {
namespace {

constexpr std::uint64_t WordsPerTask = 1024;

}  // namespace

SubTable::SubTable(const Material& material, Colour toMove)
    : ending(material), mover(toMove), layout(material) {}

bool SubTable::load(const std::string& directory, int threads, std::string& error) {
    const bool isBareKings = ending.pieceCount() == 2;
    LoadedTable table;
    if (!isBareKings) {
        if (!table.load(directory, ending.canonical(), threads, error)) return false;
        maxPlies = table.header().maxPlies;
        if (maxPlies > MaxPlies - 2) {
            error = ending.canonical().name() + " has mates too long to build on";
            return false;
        }
    }
    lines.resize(layout.wordCount());
    const bool isSwapped = !ending.isCanonical();
    parallelFor(threads, lines.size(), WordsPerTask, [&](std::uint64_t begin, std::uint64_t end) {
        for (std::uint64_t word = begin; word < end; ++word) {
            ValueLine& line = lines[word];
            line.fill(NoMove);
            const WordPieces pieces = layout.pieces(word);
            SquareMask kings = layout.legalKings(pieces, mover);
            if (kings == 0) continue;
            Position position = layout.position(pieces, lowestSquare(kings));
            position.sideToMove = mover;
            for (; kings; kings &= kings - 1) {
                const int king = lowestSquare(kings);
                position.pieces[Black].squares[0] = static_cast<std::uint8_t>(king);
                line[king] =
                    isBareKings ? DrawValue : valueOfMoveTo(table.codeOf(position, isSwapped));
            }
        }
    });
    return true;
}

std::uint64_t SubTable::wordOf(int whiteKing, const int* at, int& symmetry) const {
    symmetry = normalisingSymmetry(whiteKing, layout.hasPawns());
    std::uint64_t word = layout.kingPart(mapSquare(whiteKing, symmetry));
    for (int man = 0; man < layout.menCount(); ++man) {
        word += layout.partOf(man, mapSquare(at[man], symmetry));
    }
    return word;
}

void SubTable::fetch(int whiteKing, const int* at, ValueLine& line) const {
    int symmetry = 0;
    const ValueLine& stored = lines[wordOf(whiteKing, at, symmetry)];
    if (symmetry == 0) {
        line = stored;
        return;
    }
    for (int king = 0; king < 64; ++king) {
        line[king] = stored[mapSquare(king, symmetry)];
    }
}

Value SubTable::fetch(int whiteKing, const int* at, int blackKing) const {
    int symmetry = 0;
    const ValueLine& stored = lines[wordOf(whiteKing, at, symmetry)];
    return stored[mapSquare(blackKing, symmetry)];
}

}  // namespace vatro::egtb
