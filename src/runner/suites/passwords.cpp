#include "runner/suites/passwords.h"

#include <unistd.h>

#include <QStringList>

#include "base/environment.h"

namespace Tamrix {

QMap<QString, QString> takePasswords() {
    const QString prefix = QLatin1String(passwordVariablePrefix);
    QStringList names;
    for (char** entry = environ; entry && *entry; ++entry) {
        const QString name = QString::fromUtf8(*entry).section('=', 0, 0);
        if (name.startsWith(prefix) && name.size() > prefix.size())
            names.append(name);
    }
    QMap<QString, QString> passwords;
    for (const QString& name : names) {
        passwords.insert(name.mid(prefix.size()), Environment::getVariable(name));
        Environment::unsetVariable(name);
    }
    return passwords;
}

}  // namespace Tamrix
