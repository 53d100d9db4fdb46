#include "platform/objectmodel/nearmisstext.h"

#include <QStringList>

namespace Tamrix {

namespace {

/// The longest part of a value that a message shows.
constexpr int shownLength = 80;

QString shown(QString text) {
    text.replace('\n', QLatin1String("\\n"));
    if (text.size() > shownLength)
        text = text.left(shownLength) + QStringLiteral("...");
    return '\'' + text + '\'';
}

QString partText(const NearMiss::Difference& part) {
    if (part.property == QLatin1String("occurrence"))
        return QStringLiteral("%1 objects match, wanted occurrence %2")
            .arg(part.actual, part.wanted);
    if (part.actual.isNull())
        return QStringLiteral("it has no %1, wanted %2").arg(part.property, shown(part.wanted));
    return QStringLiteral("%1 is %2, wanted %3")
        .arg(part.property, shown(part.actual), shown(part.wanted));
}

}  // namespace

QString differenceText(const NearMiss& miss) {
    QStringList parts;
    for (const NearMiss::Difference& part : miss.differences)
        parts.append(partText(part));
    return parts.join(QStringLiteral("; "));
}

QString missText(const ObjectName& name, const QList<NearMiss>& misses) {
    QStringList lines;
    for (const NearMiss& miss : misses) {
        const QString object =
            miss.object.isEmpty() ? QString() : miss.object + QStringLiteral(": ");
        lines.append(object + differenceText(miss));
    }
    QString text = QStringLiteral("No object matches ") + name.qualifiedName();
    if (lines.size() == 1)
        text += QStringLiteral(". Nearest: ") + lines.first();
    else if (lines.size() > 1)
        text += QStringLiteral(". Nearest:\n  ") + lines.join(QStringLiteral("\n  "));
    return text;
}

}  // namespace Tamrix
