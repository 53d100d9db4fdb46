#include "interpreter/language/prelude.h"

#include <QFile>

namespace Tamrix {

QByteArray preludeSource(const QString& name) {
    QFile file(":/tamrix/" + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("The plug-in has no file %s", qUtf8Printable(name));
    return file.readAll();
}

}  // namespace Tamrix
