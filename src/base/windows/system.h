// base/windows/system.h - the calls of Windows, with names and errors as the engine has them.
#pragma once

#include <string>
#include <string_view>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace vatro {

/// From UTF-8; bytes that are none become replacement characters.
std::wstring wide(std::string_view text);
/// To UTF-8.
std::string narrow(std::wstring_view text);

/// Sets errno from an error of Windows.
void setErrno(DWORD error);

}  // namespace vatro
