#include "wire/messages.h"

#include "base/wholetext.h"
#include "wire/lists.h"
#include "wire/reading.h"
#include "wire/value.h"

namespace Tamrix::Wire {

namespace {

void writeValues(QDataStream& stream, const QVariantList& values) {
    writeValue(stream, values);
}

QVariantList readValues(QDataStream& stream) {
    return readValue(stream).toList();
}

/// A child comes behind its parent, and each type is listed.
template <typename Listed>
void checkPlace(QDataStream& stream, const Listed& object, const QStringList& types, int deepest) {
    if (object.depth < 0 || object.depth > deepest || object.type < 0 ||
        object.type >= types.size())
        setCorrupt(stream);
}

}  // namespace

// Elements of lists.

QDataStream& operator<<(QDataStream& stream, const PropertyInfo& property) {
    return stream << property.name << property.typeName << property.isWritable;
}

QDataStream& operator>>(QDataStream& stream, PropertyInfo& property) {
    property.name = readText(stream);
    property.typeName = readText(stream);
    return stream >> property.isWritable;
}

QDataStream& operator<<(QDataStream& stream, const MethodInfo& method) {
    stream << method.name << method.returnType;
    writeTexts(stream, method.argumentTypes);
    return stream << method.parameters << method.description;
}

QDataStream& operator>>(QDataStream& stream, MethodInfo& method) {
    method.name = readText(stream);
    method.returnType = readText(stream);
    method.argumentTypes = readTexts(stream);
    method.parameters = readText(stream);
    method.description = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const EventInfo& event) {
    stream << event.name;
    writeTexts(stream, event.argumentTypes);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, EventInfo& event) {
    event.name = readText(stream);
    event.argumentTypes = readTexts(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObjectInfo& body) {
    return stream << body.handle << body.className << body.objectName;
}

QDataStream& operator>>(QDataStream& stream, ObjectInfo& body) {
    stream >> body.handle;
    body.className = readText(stream);
    body.objectName = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObjectInfoList& body) {
    writeList(stream, body);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObjectInfoList& body) {
    body = readList<ObjectInfo>(stream, 8 + 2 * textSize);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Value& body) {
    writeValue(stream, body.value);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Value& body) {
    body.value = readValue(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObjectHandle& body) {
    return stream << body.handle;
}

QDataStream& operator>>(QDataStream& stream, ObjectHandle& body) {
    return stream >> body.handle;
}

QDataStream& operator<<(QDataStream& stream, const Text& body) {
    return stream << body.text;
}

QDataStream& operator>>(QDataStream& stream, Text& body) {
    body.text = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Hello& body) {
    stream << body.magic << body.version << body.token << body.pid << body.parentPid
           << body.program;
    writeTexts(stream, body.arguments);
    return stream << body.qtVersion << body.platform << body.osName;
}

QDataStream& operator>>(QDataStream& stream, Hello& body) {
    stream >> body.magic >> body.version;
    // A hello of another version may look different from here on: leave the rest as it is.
    if (stream.status() != QDataStream::Ok || body.magic != magicNumber ||
        body.version != protocolVersion) {
        stream.device()->readAll();
        return stream;
    }
    body.token = readText(stream);
    stream >> body.pid >> body.parentPid;
    body.program = readText(stream);
    body.arguments = readTexts(stream);
    body.qtVersion = readText(stream);
    body.platform = readText(stream);
    body.osName = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Failure& body) {
    stream << static_cast<quint16>(body.kind) << body.text;
    writeList(stream, body.nearMisses);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Failure& body) {
    quint16 kind = 0;
    stream >> kind;
    if (kind > static_cast<quint16>(FailureKind::Failed))
        setCorrupt(stream);
    else
        body.kind = static_cast<FailureKind>(kind);
    body.text = readText(stream);
    body.nearMisses = readNearMisses(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const TextList& body) {
    writeTexts(stream, body.texts);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, TextList& body) {
    body.texts = readTexts(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ClassInfo& body) {
    stream << body.name;
    writeTexts(stream, body.superClasses);
    writeList(stream, body.properties);
    writeList(stream, body.methods);
    writeList(stream, body.events);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ClassInfo& body) {
    body.name = readText(stream);
    body.superClasses = readTexts(stream);
    body.properties = readList<PropertyInfo>(stream, 2 * textSize + 1);
    body.methods = readList<MethodInfo>(stream, 5 * textSize);
    body.events = readList<EventInfo>(stream, 2 * textSize);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const PropertyAccess& body) {
    stream << body.handle << body.name;
    writeValue(stream, body.value);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, PropertyAccess& body) {
    stream >> body.handle;
    body.name = readText(stream);
    body.value = readValue(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Invoke& body) {
    stream << body.handle << body.method;
    writeValues(stream, body.arguments);
    return stream << body.timeout;
}

QDataStream& operator>>(QDataStream& stream, Invoke& body) {
    stream >> body.handle;
    body.method = readText(stream);
    body.arguments = readValues(stream);
    return stream >> body.timeout;
}

QDataStream& operator<<(QDataStream& stream, const Act& body) {
    stream << body.target << body.method;
    writeValues(stream, body.arguments);
    return stream << body.timeout;
}

QDataStream& operator>>(QDataStream& stream, Act& body) {
    stream >> body.target;
    body.method = readText(stream);
    body.arguments = readValues(stream);
    return stream >> body.timeout;
}

QDataStream& operator<<(QDataStream& stream, const ActResult& body) {
    stream << body.object;
    writeValue(stream, body.value);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ActResult& body) {
    stream >> body.object;
    body.value = readValue(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Snapshot& body) {
    return stream << body.target << body.withImages;
}

QDataStream& operator>>(QDataStream& stream, Snapshot& body) {
    return stream >> body.target >> body.withImages;
}

QDataStream& operator<<(QDataStream& stream, const ObjectListing& body) {
    writeTexts(stream, body.types);
    stream << static_cast<quint32>(body.objects.size());
    // Names are long and of Latin letters mostly: as UTF-8 they are half as much.
    for (const ListedObject& object : body.objects)
        stream << object.depth << object.type << object.state << object.geometry
               << object.text.toUtf8() << object.name.toUtf8();
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObjectListing& body) {
    constexpr int objectSize = 2 * 4 + 1 + 4 * 4 + 2 * textSize;
    body.types = readTexts(stream);
    const int count = readCount(stream, objectSize);
    body.objects.resize(count);
    int deepest = 0;
    for (ListedObject& object : body.objects) {
        stream >> object.depth >> object.type >> object.state >> object.geometry;
        object.text = wholeUtf8(readBytes(stream));
        object.name = wholeUtf8(readBytes(stream));
        checkPlace(stream, object, body.types, deepest);
        if (stream.status() != QDataStream::Ok)
            break;
        deepest = object.depth + 1;
    }
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObjectOutline& body) {
    writeTexts(stream, body.types);
    stream << static_cast<quint32>(body.objects.size());
    for (const OutlinedObject& object : body.objects)
        stream << object.depth << object.type << object.handle << object.state << object.geometry
               << object.name.toUtf8() << object.text.toUtf8() << object.label.toUtf8();
    return stream << body.isCut;
}

QDataStream& operator>>(QDataStream& stream, ObjectOutline& body) {
    constexpr int objectSize = 2 * 4 + 8 + 2 + 4 * 4 + 3 * textSize;
    body.types = readTexts(stream);
    const int count = readCount(stream, objectSize);
    body.objects.resize(count);
    int deepest = 0;
    for (OutlinedObject& object : body.objects) {
        stream >> object.depth >> object.type >> object.handle >> object.state >> object.geometry;
        object.name = wholeUtf8(readBytes(stream));
        object.text = wholeUtf8(readBytes(stream));
        object.label = wholeUtf8(readBytes(stream));
        checkPlace(stream, object, body.types, deepest);
        if (stream.status() != QDataStream::Ok)
            return stream;
        deepest = object.depth + 1;
    }
    return stream >> body.isCut;
}

QDataStream& operator<<(QDataStream& stream, const MouseEvent& body) {
    return stream << body.target << body.mask << body.x << body.y << body.button << body.modifiers
                  << body.buttonChange << body.press;
}

QDataStream& operator>>(QDataStream& stream, MouseEvent& body) {
    return stream >> body.target >> body.mask >> body.x >> body.y >> body.button >>
           body.modifiers >> body.buttonChange >> body.press;
}

QDataStream& operator<<(QDataStream& stream, const KeyEvent& body) {
    return stream << body.key << body.press;
}

QDataStream& operator>>(QDataStream& stream, KeyEvent& body) {
    body.key = readText(stream);
    return stream >> body.press;
}

QDataStream& operator<<(QDataStream& stream, const Highlight& body) {
    return stream << body.target << body.milliseconds << body.place;
}

QDataStream& operator>>(QDataStream& stream, Highlight& body) {
    return stream >> body.target >> body.milliseconds >> body.place;
}

QDataStream& operator<<(QDataStream& stream, const NativeRequest& body) {
    stream << body.name;
    writeValues(stream, body.arguments);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, NativeRequest& body) {
    body.name = readText(stream);
    body.arguments = readValues(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const EventHandler& body) {
    return stream << body.handle << body.className << body.event << body.callback;
}

QDataStream& operator>>(QDataStream& stream, EventHandler& body) {
    stream >> body.handle;
    body.className = readText(stream);
    body.event = readText(stream);
    body.callback = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const SendEvent& body) {
    stream << body.handle << body.event;
    writeValues(stream, body.arguments);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, SendEvent& body) {
    stream >> body.handle;
    body.event = readText(stream);
    body.arguments = readValues(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const EventFired& body) {
    return stream << body.callback << body.object;
}

QDataStream& operator>>(QDataStream& stream, EventFired& body) {
    body.callback = readText(stream);
    return stream >> body.object;
}

}  // namespace Tamrix::Wire
