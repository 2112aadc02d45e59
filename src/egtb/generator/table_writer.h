// egtb/generator/table_writer.h - puts a finished ending on disk.
//
// The file is written under a temporary name, synced and then renamed: a file with a table's name
// is complete, whatever happens to the program or the machine.
#pragma once

#include <functional>
#include <string>

#include "egtb/generator/ending.h"
#include "egtb/generator/part_file.h"
#include "egtb/table_format.h"

namespace vatro::egtb {

/// Called from time to time with the part that is done, 0.0 to 1.0; false ends the work.
using PartDone = std::function<bool(double part)>;

/// Writes the table of a solved ending to a file that this process has claimed. Throws
/// std::bad_alloc.
Status writeTable(const Ending& ending,
                  const Material& material,
                  PartFile& file,
                  int blockBits,
                  const Workers& workers,
                  const PartDone& partDone);

}  // namespace vatro::egtb
