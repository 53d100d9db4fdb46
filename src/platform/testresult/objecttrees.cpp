#include "platform/testresult/objecttrees.h"

#include <QJsonDocument>
#include <QJsonObject>

#include "base/textescape.h"

namespace Tamrix {

namespace {

/// As on a line of what "tamrixrunner inspect" prints, without the name.
QString description(const QJsonObject& object) {
    QString text = object[QLatin1String("type")].toString();
    QString own = object[QLatin1String("text")].toString();
    if (!own.isEmpty())
        text += QLatin1String(" \"") + own.replace(QLatin1Char('\n'), QLatin1String("\\n")) +
                QLatin1Char('"');
    const QJsonObject properties = object[QLatin1String("properties")].toObject();
    QStringList states;
    if (properties[QLatin1String("visible")].toString() == QLatin1String("false"))
        states += QStringLiteral("hidden");
    if (properties[QLatin1String("enabled")].toString() == QLatin1String("false"))
        states += QStringLiteral("disabled");
    if (!states.isEmpty())
        text += QStringLiteral(" (%1)").arg(states.join(QLatin1String(", ")));
    return escapedForTerminal(text);
}

// QJsonDocument reads no deeper nesting than calls can follow.
void append(const QJsonArray& objects, int depth, QJsonArray* list) {
    for (const QJsonValue& value : objects) {
        const QJsonObject object = value.toObject();
        list->append(QJsonArray{depth, description(object),
                                escapedForTerminal(object[QLatin1String("name")].toString())});
        append(object[QLatin1String("children")].toArray(), depth + 1, list);
    }
}

}  // namespace

int ObjectTrees::indexOf(const QString& path, const QByteArray& json, qint64* budget) {
    const auto known = m_indexes.constFind(path);
    if (known != m_indexes.constEnd())
        return *known;
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray() || json.size() > *budget)
        return -1;
    *budget -= json.size();
    QJsonArray list;
    append(document.array(), 0, &list);
    const int index = m_trees.size();
    m_trees.append(list);
    m_indexes.insert(path, index);
    return index;
}

}  // namespace Tamrix
