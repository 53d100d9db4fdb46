#include "runner/recording/recordednames.h"

#include <QFileInfo>

#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/remote/namequery.h"

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
    return !m_file.isEmpty() && file.suffix() == suffix ? file.completeBaseName() : QString();
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
