#include "runner/recording/recordednames.h"

#include <QFile>
#include <QFileInfo>

#include "base/filewriting.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/remote/namequery.h"

namespace Tamrix {

Outcome<> RecordedNames::useFileOf(const QString& suiteDirectory) {
    const QString path = suiteDirectory + QLatin1String("/shared/objectnames.tsv");
    if (!QFileInfo::exists(path))
        return {};
    m_file = path;
    return ObjectMap::self()->load(path);
}

QString RecordedNames::nameOf(const Wire::Query& query) {
    const ObjectName name = nameOfQuery(query);
    if (!name.isValid())
        return {};
    const QString realName = name.qualifiedName();
    if (m_file.isEmpty())
        return realName;
    const QString known = ObjectMap::self()->symbolicName(realName);
    if (!known.isEmpty())
        return known;
    const QString made = ObjectMap::self()->symbolicName(realName, true);
    append(made, realName);
    // What the file does not have, the script does.
    return m_result ? made : realName;
}

void RecordedNames::append(const QString& symbolicName, const QString& realName) {
    QFile file(m_file);
    if (!m_result)
        return;
    QString error;
    bool isWritten = file.open(QIODevice::ReadWrite);
    if (!isWritten)
        error = file.errorString();
    if (isWritten) {
        const QByteArray before = file.readAll();
        const QString line = ObjectMap::escapeForSerialize(symbolicName) + u'\t' +
                             ObjectMap::escapeForSerialize(realName) + u'\n';
        const bool isLineOpen = !before.isEmpty() && !before.endsWith('\n');
        isWritten = writeAll(&file, (isLineOpen ? "\n" : "") + line.toUtf8(), &error);
    }
    if (!isWritten)
        m_result = fail(FailureKind::Failed,
                        QStringLiteral("'%1' can't be written: %2").arg(m_file, error));
}

}  // namespace Tamrix
