#pragma once

#include <QString>

#include "base/environment.h"

namespace Tamrix::Test {

/// Gives an environment variable a value, or unsets it for a null string, until the end of the
/// scope.
class EnvironmentGuard {
public:
    EnvironmentGuard(const QString& name, const QString& value)
        : m_name(name), m_before(Environment::getVariable(name)) {
        set(value);
    }
    ~EnvironmentGuard() { set(m_before); }
    EnvironmentGuard(const EnvironmentGuard&) = delete;
    EnvironmentGuard& operator=(const EnvironmentGuard&) = delete;

private:
    void set(const QString& value) const {
        if (value.isNull())
            Environment::unsetVariable(m_name);
        else
            Environment::setVariable(m_name, value);
    }

    QString m_name;
    QString m_before;
};

}  // namespace Tamrix::Test
