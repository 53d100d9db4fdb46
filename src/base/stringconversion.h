#pragma once

#include <string>

#include "base/export.h"

namespace Tamrix {

/// The text converted from one encoding to another, both named as iconv names them ("UTF-8", ""
/// for the local one). A byte that can't be converted becomes "?", an unknown encoding gives the
/// text back as it is: paths and messages must survive a conversion that is not possible.
TAMRIX_EXPORT std::string mbs2mbs(const std::string& text, const char* from, const char* to);

/// UTF-8 to the encoding of the C locale in force, as the system's file and message calls want it.
TAMRIX_EXPORT std::string utf8ToLocal8Bit(const std::string& text);

/// The encoding of the C locale in force to UTF-8.
TAMRIX_EXPORT std::string local8BitToUTF8(const std::string& text);

}  // namespace Tamrix
