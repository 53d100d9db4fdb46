#include "runner/recording/recordednames.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

#include "base/utf8file.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/remote/namequery.h"
#include "platform/objectmodel/scriptedobjectmap.h"

namespace Tamrix {

namespace {

/// An object of which a map needs no more than its name.
class NamedObject : public Object {
public:
    explicit NamedObject(const QString& name) : m_name(name) {}
    QString realName() const override { return m_name; }

private:
    QString m_name;
};

/// The line that begins the module of a map's variables, as far as it may not be written otherwise:
/// "module Names", "package names". Empty in languages where the file is the module.
QString moduleLine(const ScriptNotation& notation) {
    for (const QString& line : notation.heading.split(u'\n')) {
        static const QRegularExpression s_end(QStringLiteral("[;{].*"));
        if (!line.startsWith(notation.comment.trimmed()))
            return QString(line).remove(s_end).simplified();
    }
    return {};
}

/// Whether the variables of the map's file stand in their module: a person may have written them
/// without one.
bool hasModule(const QString& path) {
    const auto* const map = dynamic_cast<const ScriptedObjectMap*>(ObjectMap::self());
    const QString begin = map ? moduleLine(map->notation()) : QString();
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (begin.isEmpty() || !content)
        return true;
    const QStringList lines = content->text.split(u'\n');
    return std::any_of(lines.begin(), lines.end(),
                       [&](const QString& line) { return line.simplified().startsWith(begin); });
}

}  // namespace

Outcome<> RecordedNames::useMapOf(const QString& suiteDirectory) {
    const QString path = suiteObjectMap(suiteDirectory);
    if (!QFileInfo::exists(path))
        return {};
    if (const Outcome<> used = useObjectMap(path); !used)
        return used;
    m_file = path;
    // What is wrong with it is told before something is recorded.
    const auto names = ObjectMap::self()->names();
    return names ? Outcome<>() : fail(names.error());
}

QString RecordedNames::moduleFor(const QString& suffix) const {
    const QFileInfo file(m_file);
    const bool isOwn = !m_file.isEmpty() && file.suffix() == suffix && hasModule(m_file);
    return isOwn ? file.completeBaseName() : QString();
}

QString RecordedNames::nameOf(const Wire::Query& query) {
    const ObjectName name = nameOfQuery(query);
    if (!name.isValid())
        return {};
    const QString realName = name.qualifiedName();
    if (m_file.isEmpty() || !m_result)
        return realName;
    const Outcome<QString> key =
        ObjectMap::self()->add(SharedPtr<Object>(new NamedObject(realName)));
    if (key)
        return *key;
    // What the map does not have, the script does.
    m_result = fail(key.error());
    return realName;
}

}  // namespace Tamrix
