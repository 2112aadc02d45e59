// egtb/generator/part_file.cpp - claiming, writing and renaming, with words for what fails.
#include "egtb/generator/part_file.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace vatro::egtb {

PartFile::PartFile(const std::string& finalPath)
    : finalName(finalPath), partName(finalPath + ".part") {}

PartFile::~PartFile() {
    // While it is claimed, so that it cannot be another process's.
    if (file.isOpen()) removeFile(partName);
}

bool PartFile::fail(const std::string& why) {
    text = partName + ": " + why;
    return false;
}

bool PartFile::failBySystem() { return fail(std::strerror(errno)); }

bool PartFile::failAsNotPlain() { return fail("is not a plain file; remove it"); }

bool PartFile::isClaimable() {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path path = standardPath(partName);
    const fs::file_status status = fs::symlink_status(path, error);
    if (!fs::exists(status)) return true;
    if (!fs::is_regular_file(status)) return failAsNotPlain();
    // Another process may just have given it its final name.
    const std::uintmax_t names = fs::hard_link_count(path, error);
    return error || names == 1 || failAsNotPlain();
}

File::Claim PartFile::claim() {
    const File::Claim result = file.claim(partName);
    if (result == File::Claim::NotPlain) failAsNotPlain();
    if (result == File::Claim::Failed) failBySystem();
    return result;
}

bool PartFile::write(std::uint64_t at, const std::uint8_t* bytes, std::size_t size) {
    return file.writeAt(at, bytes, size) || failBySystem();
}

bool PartFile::putInPlace() {
    // Renamed while it is claimed: nobody else can take it meanwhile.
    if (!file.sync() || !renameFile(partName, finalName)) return failBySystem();
    file.close();
    return true;
}

}  // namespace vatro::egtb
