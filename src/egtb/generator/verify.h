// src/egtb/generator/verify.h - checks a table against its own moves, and sums it up.
#pragma once

#include <cstdint>
#include <string>

#include "egtb/generator/table_writer.h"
#include "egtb/material.h"

namespace vatro::egtb {

/// Reads the table of an ending and those that it leads to, and checks that every legal position
/// has the value that its moves give it. False on the first fault, with a line in `error`. Throws
/// std::bad_alloc.
bool verifyTable(const std::string& directory,
                 const Material& material,
                 int threads,
                 const PartDone& partDone,
                 std::string& error);

struct TableStatistics {
    struct Side {
        std::uint64_t wins = 0;  // of the side to move, as are draws and losses
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

/// Counts the positions of a table, each once for all its symmetric images. With both sides alike
/// only White to move is counted. False and `error` as above. Throws std::bad_alloc.
bool countTable(const std::string& directory,
                const Material& material,
                int threads,
                TableStatistics& statistics,
                std::string& error);

std::string fenOf(const Position& position);

}  // namespace vatro::egtb
