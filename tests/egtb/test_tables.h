// tests/egtb/test_tables.h - tables in a temporary folder, and positions to ask them about.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "egtb/position.h"
#include "egtb/tablebases.h"

namespace vatro::egtb {

/// A new directory, removed with everything in it.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    const std::string& path() const { return name; }

  private:
    std::string name;
};

/// A directory with the tables of these endings and all that they need, made at the first call
/// and removed at the end of the process.
const std::string& tablesOf(const std::vector<std::string>& endings);

/// The endings that most tests share: few seconds to make, with long mates and both outcomes.
const std::string& smallTables();

std::vector<std::uint8_t> readFile(const std::string& path);
void writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

/// Writes a well-formed table whose value at each offset is `codes[offset % codes.size()]`.
void writeTableOf(const std::string& directory,
                  const std::string& ending,
                  const std::vector<std::uint8_t>& codes);

/// The position of a FEN's first two fields.
Position positionOf(const std::string& fen);
TablebaseState::Query queryOf(const Position& position, Square64 ep = NoEpSquare);

/// What a probe says, on one line: "W 12", "B 3", "draw" or "none".
std::string answer(const TablebaseState& tables,
                   const TablebaseState::Query& query,
                   bool mayReadDisk = true);

}  // namespace vatro::egtb
