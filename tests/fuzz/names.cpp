// Names of objects: one real name, or, when the first byte is "#", a map of names.

#include <QString>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectname.h"

using namespace Tamrix;

namespace {

void checkName(const QString& text) {
    QMap<QString, PropertyValue> properties;
    QString error;
    if (!parseNameByProperties(text, &properties, &error)) {
        fuzzRequire(!error.isEmpty() && properties.isEmpty(), "a malformed name has a reason");
        return;
    }
    const QString written = ObjectName(properties).qualifiedName();
    fuzzRequire(isMultiPropertyName(written), "a real name looks like one");
    fuzzRequire(ObjectName(written).qualifiedName() == written, "a name is read as it is written");
}

void checkMap(const QString& text) {
    QString error;
    const QMap<QString, ObjectName> names = ObjectMap::parseSerializedMap(text, &error);
    for (auto entry = names.begin(); entry != names.end(); ++entry) {
        const QString line = ObjectMap::escapeForSerialize(entry.key()) + '\t' +
                             ObjectMap::escapeForSerialize(entry->qualifiedName()) + '\n';
        const QMap<QString, ObjectName> again = ObjectMap::parseSerializedMap(line, &error);
        fuzzRequire(again.size() == 1 && again.firstKey() == entry.key() &&
                        again.first().qualifiedName() == entry->qualifiedName(),
                    "an entry is read as it is written");
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const bool isMap = size > 0 && *data == '#';
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (isMap)
        checkMap(text);
    else
        checkName(text);
    return 0;
}
