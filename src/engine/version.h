// engine/version.h - what the program calls itself.
#pragma once

namespace vatro {

inline constexpr char ProgramTitle[] = "Vatro 0.6.62";

}  // namespace vatro
