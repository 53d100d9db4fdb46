#include "base/environment.h"

#include <cstdlib>

#include "base/nativebytes.h"

namespace Tamrix {

QString Environment::getVariable(const QString& name) {
    const char* value = ::getenv(toNativeBytes(name).constData());
    return value ? fromNativeBytes(value) : QString();
}

void Environment::setVariable(const QString& name, const QString& value) {
    ::setenv(toNativeBytes(name).constData(), toNativeBytes(value).constData(), 1);
}

void Environment::unsetVariable(const QString& name) {
    ::unsetenv(toNativeBytes(name).constData());
}

QString expandPrefix(QString text) {
    return text.replace(QStringLiteral("@(TAMRIX_PREFIX)"),
                        Environment::getVariable(QLatin1String(prefixVariable)));
}

}  // namespace Tamrix
