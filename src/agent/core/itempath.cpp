#include "agent/core/itempath.h"

namespace Tamrix::Agent {

QStringList splitItemPath(const QString& path) {
    QStringList parts{QString()};
    for (int i = 0; i < path.size(); ++i) {
        const QChar character = path.at(i);
        const bool isEscape = character == u'\\' && i + 1 < path.size() && path.at(i + 1) == u'.';
        if (isEscape) {
            parts.last() += path.midRef(i, 2);
            ++i;
        } else if (character == u'.') {
            parts.append(QString());
        } else {
            parts.last() += character;
        }
    }
    return parts;
}

QString unescapeItemText(const QString& part) {
    return QString(part).replace(QStringLiteral("\\."), QStringLiteral("."));
}

QStringList itemTexts(const QString& path) {
    QStringList texts;
    for (const QString& part : splitItemPath(path))
        texts.append(unescapeItemText(part));
    return texts;
}

}  // namespace Tamrix::Agent
