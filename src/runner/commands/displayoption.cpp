#include "runner/commands/displayoption.h"

#include <QRegularExpression>

namespace Tamrix {

Outcome<> checkDisplay(const QString& display) {
    static const QRegularExpression number(QStringLiteral("\\A:[0-9]+(\\.[0-9]+)?\\z"));
    if (display == QLatin1String("auto") || display == QLatin1String("inherit") ||
        number.match(display).hasMatch())
        return {};
    return wrongUsage(
        QStringLiteral("--aut-display takes auto, inherit or :N, not '%1'").arg(display));
}

}  // namespace Tamrix
