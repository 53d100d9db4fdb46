#include "runner/recording/recordednames.h"

#include <QFileInfo>

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

/// The map as a script, and its text; null for a map that is none.
const ScriptedObjectMap* scriptedMap(const QString& path, QString* text) {
    const auto* const map = dynamic_cast<const ScriptedObjectMap*>(ObjectMap::self());
    const Outcome<Utf8Text> content = readUtf8File(path);
    *text = content ? content->text : QString();
    return content ? map : nullptr;
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
    QString text;
    const auto* const map = m_file.isEmpty() ? nullptr : scriptedMap(m_file, &text);
    const bool isOwn = file.suffix() == suffix && map && hasModule(map->notation(), text);
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
    if (key) {
        QString text;
        const auto* const map = scriptedMap(m_file, &text);
        // A variable beside the module is none that scripts find in it.
        const bool isBeside = map && hasModule(map->notation(), text) &&
                              !isInModule(map->notation(), text, variableOfKey(*key));
        return isBeside ? QFileInfo(m_file).completeBaseName() + u'.' + variableOfKey(*key) : *key;
    }
    // What the map does not have, the script does.
    m_result = fail(key.error());
    return realName;
}

}  // namespace Tamrix
