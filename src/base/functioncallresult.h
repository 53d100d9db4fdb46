#pragma once

#include <QString>
#include <utility>

namespace Tamrix {

/// Outcome of a call that can fail: an error text, empty on success, and a value.
/// A failure is turned into a script error by the caller; it is never thrown.
template <typename T>
class FunctionCallResult {
public:
    FunctionCallResult() = default;
    FunctionCallResult(T value) : m_value(std::move(value)) {}

    /// A failed result with a default value.
    static FunctionCallResult error(const QString& text) {
        FunctionCallResult result;
        result.m_error = text;
        return result;
    }

    bool ok() const { return m_error.isEmpty(); }
    QString errorText() const { return m_error; }
    const T& value() const { return m_value; }

private:
    QString m_error;
    T m_value{};
};

template <>
class FunctionCallResult<void> {
public:
    static FunctionCallResult error(const QString& text) {
        FunctionCallResult result;
        result.m_error = text;
        return result;
    }

    bool ok() const { return m_error.isEmpty(); }
    QString errorText() const { return m_error; }

private:
    QString m_error;
};

}  // namespace Tamrix
