#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// Name of the environment variable that holds the installation's folder.
inline constexpr const char* prefixVariable = "TAMRIX_PREFIX";

/// Access to the process's environment. Names and values are taken as UTF-8.
/// Not for use while another thread changes the environment.
class TAMRIX_EXPORT Environment {
public:
    /// The variable's value; the null string when it is unset.
    static QString getVariable(const QString& name);
    static void setVariable(const QString& name, const QString& value);
    static void unsetVariable(const QString& name);
};

/// The text with every "@(TAMRIX_PREFIX)" replaced by the value of that variable.
TAMRIX_EXPORT QString expandPrefix(QString text);

}  // namespace Tamrix
