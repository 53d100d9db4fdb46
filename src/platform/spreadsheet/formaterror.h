#pragma once

#include <stdexcept>

namespace Swinder {

/// A file that isn't what it should be; the text says what is wrong.
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace Swinder
