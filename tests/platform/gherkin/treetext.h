#pragma once

#include <string>

#include "platform/gherkin/parser.h"

namespace Tamrix::Gherkin::Test {

/// The tree of a feature file, or its errors, in lines that people can read: each thing with its
/// place, texts in quotation marks.
std::string treeText(const ParseResult& result);

}  // namespace Tamrix::Gherkin::Test
