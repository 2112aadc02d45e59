// base/file.cpp - names of files; posix/ and windows/ have the rest.
#include "base/file.h"

namespace vatro {

std::string pathIn(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.ends_with('/')) return folder + name;
    return folder + '/' + name;
}

}  // namespace vatro
