// shell/default_book.h - the opening book that is used when nobody names one.
#pragma once

#include "book/polyglot_book.h"

namespace vatro {

/// Sets the book that was installed with the program, if there is one, unless the working directory
/// has a book of its own. Before the configuration, which may name another.
void chooseDefaultBook(PolyglotBook& book);

}  // namespace vatro
