#include "runner/installation.h"

#include <langinfo.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <clocale>
#include <cstdlib>
#include <cstring>

#include "base/environment.h"

namespace Tamrix {

void useUnicodeLocale() {
    std::setlocale(LC_CTYPE, "");
    // What glibc calls the character set of the locales "C" and "POSIX".
    if (std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") != 0)
        return;
    const char* all = std::getenv("LC_ALL");
    ::setenv(all && *all ? "LC_ALL" : "LC_CTYPE", "C.UTF-8", 1);
    std::setlocale(LC_CTYPE, "");
}

void setInstallationPrefix() {
    const QString variable = QLatin1String(prefixVariable);
    QString prefix = Environment::getVariable(variable);
    if (prefix.isEmpty()) {
        const QString program =
            QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath();
        const QString folder = QFileInfo(program).absolutePath();
        const QString helpers = QStringLiteral("/lib/exec");
        prefix = folder.endsWith(helpers) ? folder.chopped(helpers.size())
                                          : QFileInfo(folder).absolutePath();
    }
    Environment::setVariable(variable, QDir::cleanPath(QDir::current().absoluteFilePath(prefix)));
}

}  // namespace Tamrix
