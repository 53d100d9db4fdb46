#include "base/environment.h"

#include <cstdlib>

namespace Tamrix {

QString Environment::getVariable(const QString& name) {
    const char* value = ::getenv(name.toUtf8().constData());
    return value ? QString::fromUtf8(value) : QString();
}

void Environment::setVariable(const QString& name, const QString& value) {
    ::setenv(name.toUtf8().constData(), value.toUtf8().constData(), 1);
}

void Environment::unsetVariable(const QString& name) {
    ::unsetenv(name.toUtf8().constData());
}

QString expandPrefix(QString text) {
    return text.replace(QStringLiteral("@(TAMRIX_PREFIX)"),
                        Environment::getVariable(QLatin1String(prefixVariable)));
}

}  // namespace Tamrix
