// shell/default_book.cpp - finding the book that was installed with the program.
#include "shell/default_book.h"

#include <filesystem>
#include <system_error>

#include "base/program_folder.h"

namespace vatro {

void chooseDefaultBook(PolyglotBook& book) {
    // Relative to the folder of the program; empty in a build that is not for installation.
    const std::filesystem::path installed(VATRO_INSTALLED_BOOK);
    const std::filesystem::path folder = programFolder();
    std::error_code ignored;
    if (installed.empty() || folder.empty() ||
        std::filesystem::exists(PolyglotBook::DefaultPath, ignored)) {
        return;
    }
    book.setPath((folder / installed).lexically_normal().string());
}

}  // namespace vatro
