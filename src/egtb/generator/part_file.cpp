// egtb/generator/part_file.cpp - claiming, writing and renaming, with words for what fails.
#include "egtb/generator/part_file.h"

#include <cerrno>
#include <cstring>

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

File::Claim PartFile::claim() {
    const File::Claim result = file.claim(partName);
    if (result == File::Claim::NotPlain) fail("is not a plain file; remove it");
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
