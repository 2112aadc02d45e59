// src/egtb/generator/loaded_table.cpp - inflating all blocks of a table at once.
#include "egtb/generator/loaded_table.h"

#include <atomic>
#include <filesystem>

#include "egtb/generator/parallel.h"

namespace vatro::egtb {

std::string tablePath(const std::string& directory, const Material& material) {
    return (std::filesystem::path(directory) / (material.name() + TableSuffix)).string();
}

bool LoadedTable::load(const std::string& directory,
                       const Material& material,
                       int threads,
                       std::string& error) {
    const std::string path = tablePath(directory, material);
    std::string fault;
    bool isForeign = false;
    file = TableFile::open(path, fault, isForeign);
    if (!file) {
        error = path + " " + fault;
        return false;
    }
    if (file->header().material != material) {
        error = path + " holds another ending";
        return false;
    }
    values.resize(file->header().valueCount());
    std::atomic<bool> isWhole{true};
    parallelFor(threads, file->header().blockCount, 16,
                [&](std::uint64_t begin, std::uint64_t end) {
                    for (std::uint64_t block = begin; block < end; ++block) {
                        std::uint8_t* to = &values[block << file->header().blockBits];
                        if (!file->readBlock(static_cast<std::uint32_t>(block), to))
                            isWhole = false;
                    }
                });
    if (!isWhole) error = path + " is damaged";
    return isWhole;
}

}  // namespace vatro::egtb
