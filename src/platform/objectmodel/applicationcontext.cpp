#include "platform/objectmodel/applicationcontext.h"

namespace Tamrix {

QString ApplicationContext::displayString() const {
    return QStringLiteral("AUT '%1' (pid %2, started %3)")
        .arg(name, QString::number(pid), startTime.toString(Qt::ISODate));
}

void ApplicationContext::stop(const QString&) {}

}  // namespace Tamrix
