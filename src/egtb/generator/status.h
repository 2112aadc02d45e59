// egtb/generator/status.h - how a step of the generator ended.
#pragma once

#include <string>
#include <utility>

namespace vatro::egtb {

/// Success, or a line for the user that says what failed.
class [[nodiscard]] Status {
  public:
    static Status good() { return Status({}); }
    /// `line` is not empty.
    static Status failure(std::string line) { return Status(std::move(line)); }
    static Status interrupted() { return failure("interrupted"); }

    bool isGood() const { return text.empty(); }
    const std::string& line() const { return text; }

  private:
    explicit Status(std::string line) : text(std::move(line)) {}

    std::string text;
};

}  // namespace vatro::egtb
