// egtb/generator/verify.h - checks a table against the moves of its positions, and sums it up.
#pragma once

#include <cstdint>
#include <string>

#include "egtb/generator/table_writer.h"
#include "egtb/material.h"

namespace vatro::egtb {

/// Reads the table of an ending and those that it leads to, and checks that every legal position
/// has the value that its moves give it: then all values are right, as the shortest wrong one would
/// contradict its moves. Stops at the first fault. Throws std::bad_alloc.
Status verifyTable(const std::string& directory,
                   const Material& material,
                   const Workers& workers,
                   const PartDone& partDone);

struct TableStatistics {
    struct Side {
        std::uint64_t wins = 0;  // of the side to move
        std::uint64_t draws = 0;
        std::uint64_t losses = 0;
        int longestWin = 0;         // plies; 0 when there is none
        int longestLoss = 0;        // plies
        std::string longestWinFen;  // empty when there is none
        std::string longestLossFen;
    };
    Side side[ColourCount];
    std::uint64_t fileSize = 0;
};

/// Counts the positions of a table, all symmetric images of one as one. When both sides have the
/// same men, only positions with White to move are counted. `statistics` is complete when the
/// status is good. Throws std::bad_alloc.
Status countTable(const std::string& directory,
                  const Material& material,
                  const Workers& workers,
                  TableStatistics& statistics);

/// The line about a position whose stored value is wrong.
std::string wrongValueLine(const Material& material,
                           const Position& position,
                           int stored,
                           int byMoves);

/// The FEN of a position without castling rights.
std::string fenOf(const Position& position);

}  // namespace vatro::egtb
