// egtb/generator/plan.h - what a run would do, for programs that run the tables one by one.
#pragma once

#include <string>
#include <vector>

#include "egtb/material.h"

namespace vatro::egtb {

/// One line for each ending of the list: its name, its number of pieces, the megabytes that making
/// it takes, and the endings that must be there before.
std::string describeNeeds(const std::vector<Material>& list);

struct MakefileOptions {
    std::string directory;  // of the tables
    int threads = 1;        // of each command
};

/// A makefile that makes the tables of the list, which holds what they need. Its variables TBGEN,
/// OUT, THREADS and RUN, which comes before each command, can be set by the caller; in RUN, $(MEM)
/// stands for the megabytes of the table at hand.
std::string makefileOf(const std::vector<Material>& list, const MakefileOptions& options);

}  // namespace vatro::egtb
