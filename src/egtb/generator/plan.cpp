// egtb/generator/plan.cpp - lists and makefiles.
#include "egtb/generator/plan.h"

#include "egtb/generator/generator.h"
#include "egtb/table_format.h"

namespace vatro::egtb {
namespace {

/// The megabytes to ask a batch system for: what the tables take, and the program.
std::uint64_t megabytesToMake(const Material& material) {
    constexpr std::uint64_t ProgramMB = 32;  // measured: 10 for two threads
    return (memoryToMake(material) >> 20) + ProgramMB;
}

}  // namespace

std::string describeNeeds(const std::vector<Material>& list) {
    std::string text;
    for (const Material& material : list) {
        text += material.name() + ' ' + std::to_string(material.pieceCount()) + ' ' +
                std::to_string(megabytesToMake(material));
        for (const Material& needed : successors(material)) {
            text += ' ' + needed.name();
        }
        text += '\n';
    }
    return text;
}

std::string makefileOf(const std::vector<Material>& list, const MakefileOptions& options) {
    const auto target = [](const Material& material) {
        return "$(OUT)/" + material.name() + TableSuffix;
    };
    std::string text =
        "# Written by vatro-tbgen. RUN comes before each command; $(MEM) is its memory in MB, as "
        "in\n"
        "#   make -j64 RUN='srun -n1 --mem=$(MEM)'\n"
        "TBGEN = vatro-tbgen\n"
        "RUN =\n"
        "THREADS = " +
        std::to_string(options.threads) + "\nOUT = " + options.directory + "\n\n.PHONY: all\nall:";
    for (const Material& material : list) {
        text += " \\\n  ";
        text += target(material);
    }
    text += '\n';
    for (const Material& material : list) {
        const std::string file = target(material);
        text += '\n';
        text += file + ": MEM = " + std::to_string(megabytesToMake(material)) + '\n';
        text += file + ':';
        const std::vector<Material> needs = successors(material);
        // Order-only: a smaller table that was copied later makes no larger one stale.
        if (!needs.empty()) text += " |";
        for (const Material& needed : needs) {
            text += ' ';
            text += target(needed);
        }
        text += "\n\t$(RUN) $(TBGEN) --only ";
        text += material.name() + " --threads $(THREADS) --out $(OUT)\n";
    }
    return text;
}

}  // namespace vatro::egtb
