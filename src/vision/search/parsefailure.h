#pragma once

#include <QString>

namespace Tamrix::Vision {

/// Throws a std::runtime_error of this text, in UTF-8.
[[noreturn]] void failParsing(const QString& text);

}  // namespace Tamrix::Vision
