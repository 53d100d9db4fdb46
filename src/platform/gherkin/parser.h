#pragma once

#include <string>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/document.h"
#include "platform/gherkin/errors.h"

namespace Tamrix::Gherkin {

/// Limits of a feature file, in bytes.
constexpr std::size_t maxFeatureFileSize = std::size_t(64) << 20;
constexpr std::size_t maxLineSize = std::size_t(8) << 20;

/// The parser gives up at this number of errors, as others of this language do.
constexpr std::size_t maxParseErrors = 11;

struct ParseResult {
    /// What was understood. With errors, what stands at their places is missing.
    Document document;
    /// In the order in which they were found; empty for a file that is right.
    std::vector<ParseError> errors;
};

/// Reads a feature file in UTF-8, with or without a byte order mark.
TAMRIX_EXPORT ParseResult parse(std::string source);

}  // namespace Tamrix::Gherkin
