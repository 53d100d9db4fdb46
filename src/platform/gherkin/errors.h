#pragma once

#include <exception>
#include <string>

#include "base/export.h"
#include "platform/gherkin/document.h"

namespace Tamrix::Gherkin {

/// Something in a feature file that doesn't belong there.
struct ParseError {
    Location location;
    /// What was expected, or what is wrong.
    std::string message;
    /// What stands there.
    std::string token;
};

/// A feature file that can't be run, since it isn't Gherkin: the first of its errors.
class TAMRIX_EXPORT SyntaxError : public std::exception {
public:
    explicit SyntaxError(const ParseError& error);

    /// What is wrong, with the column if it is known.
    const char* what() const noexcept override { return m_text.c_str(); }
    int line() const { return m_line; }
    /// What stands where something else was expected.
    std::string token() const { return m_token; }

private:
    int m_line;
    std::string m_text;
    std::string m_token;
};

/// A feature file that is Gherkin but can't be run, or can't be run to its end.
class TAMRIX_EXPORT RunFeatureError : public std::exception {
public:
    RunFeatureError(int line, std::string text);

    const char* what() const noexcept override { return m_text.c_str(); }
    int line() const { return m_line; }

private:
    int m_line;
    std::string m_text;
};

}  // namespace Tamrix::Gherkin
