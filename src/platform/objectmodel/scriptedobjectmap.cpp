#include "platform/objectmodel/scriptedobjectmap.h"

#include <QDirIterator>
#include <QFileInfo>

namespace Tamrix {

ScriptedObjectMap::ScriptedObjectMap(const QString& path, const QString& suffix)
    : m_suffix(suffix) {
    setPath(path);
}

QString ScriptedObjectMap::createScriptedRealName(const ObjectName& name, bool onSeveralLines,
                                                  bool withReferences) {
    return writtenName(notation(), withReferences ? referring(name) : name,
                       onSeveralLines ? QStringLiteral("    ") : QString());
}

QDateTime ScriptedObjectMap::lastScriptModification(const QStringList& patterns) const {
    QDateTime newest;
    QDirIterator files(QFileInfo(path()).path(), patterns, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        const QDateTime modified = files.fileInfo().lastModified();
        if (!newest.isValid() || modified > newest)
            newest = modified;
    }
    return newest;
}

}  // namespace Tamrix
