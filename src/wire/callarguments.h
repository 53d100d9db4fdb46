#pragma once

#include <QPoint>
#include <QString>
#include <QVariantList>
#include <exception>
#include <utility>

#include "base/outcome.h"

namespace Tamrix::Wire {

/// Ends a call of a global function with a failure.
class CallError : public std::exception {
public:
    explicit CallError(Failure failure) : m_failure(std::move(failure)) {}
    CallError(FailureKind kind, const QString& text) : CallError(Failure{kind, text}) {}
    const Failure& failure() const { return m_failure; }
    FailureKind kind() const { return m_failure.kind; }
    QString text() const { return m_failure.text; }
    const char* what() const noexcept override { return "a global function failed"; }

private:
    Failure m_failure;
};

/// The failure as the caller of a function gets it: for a bad argument with the function and its
/// usage, `parameters` being those of ApplicationFunction.
Failure withUsage(const Failure& failure, const QString& function, const char* parameters);

/// The arguments of a call of a global function, read one after another. The take...() functions
/// throw CallError with what was wrong, a FailureKind::BadArgument.
class CallArguments {
public:
    explicit CallArguments(const QVariantList& arguments) : m_arguments(arguments) {}

    bool hasNumber(int ahead = 0) const;
    bool hasText() const;
    bool isAtEnd() const { return m_next >= m_arguments.size(); }

    /// A number, rounded, of the size that coordinates and modifiers have.
    int takeNumber(const char* name);
    QPoint takePoint(const char* x, const char* y);
    /// A number counts as its digits.
    QString takeText(const char* name);
    void takeEnd() const;

protected:
    [[noreturn]] static void failArgument(const QString& text);
    static bool isTextual(const QVariant& value);
    /// Invalid at the end.
    QVariant next() const { return m_arguments.value(m_next); }
    QVariant take(const char* name);

private:
    QVariantList m_arguments;
    int m_next = 0;
};

}  // namespace Tamrix::Wire
