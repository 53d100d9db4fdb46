#include "wire/messages.h"

#include "base/wholetext.h"
#include "wire/reading.h"
#include "wire/value.h"

namespace Tamrix::Wire {

namespace {

/// Smallest encoding of a text: its length.
constexpr int textSize = 4;

void writeTexts(QDataStream& stream, const QStringList& texts) {
    stream << static_cast<quint32>(texts.size());
    for (const QString& text : texts)
        stream << text;
}

QStringList readTexts(QDataStream& stream) {
    QStringList texts;
    const int count = readCount(stream, textSize);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index)
        texts.append(readText(stream));
    return texts;
}

template <typename Element>
void writeList(QDataStream& stream, const QList<Element>& list) {
    stream << static_cast<quint32>(list.size());
    for (const Element& element : list)
        stream << element;
}

/// `elementSize`: bytes of the smallest element.
template <typename Element>
QList<Element> readList(QDataStream& stream, int elementSize) {
    QList<Element> list;
    const int count = readCount(stream, elementSize);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index) {
        Element element;
        stream >> element;
        list.append(element);
    }
    return list;
}

void writeValues(QDataStream& stream, const QVariantList& values) {
    writeValue(stream, values);
}

QVariantList readValues(QDataStream& stream) {
    return readValue(stream).toList();
}

void writeQuery(QDataStream& stream, const Query& query) {
    stream << static_cast<quint32>(query.criteria.size());
    for (const Criterion& criterion : query.criteria) {
        stream << criterion.property << criterion.modifier << criterion.text
               << bool(criterion.object);
        if (criterion.object)
            writeQuery(stream, *criterion.object);
    }
    stream << query.occurrence;
}

void readQuery(QDataStream& stream, Query& query, int depth) {
    query.criteria.clear();
    const int count = readCount(stream, 2 * textSize + 5);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index) {
        Criterion criterion;
        bool hasObject = false;
        criterion.property = readText(stream);
        stream >> criterion.modifier;
        criterion.text = readText(stream);
        stream >> hasObject;
        if (hasObject && depth >= maximalDepth) {
            setCorrupt(stream);
        } else if (hasObject) {
            criterion.object = std::make_shared<Query>();
            readQuery(stream, *criterion.object, depth + 1);
        }
        query.criteria.append(criterion);
    }
    stream >> query.occurrence;
}

}  // namespace

// Elements of lists.

QDataStream& operator<<(QDataStream& stream, const NearMiss::Difference& difference) {
    return stream << difference.property << difference.wanted << difference.actual;
}

QDataStream& operator>>(QDataStream& stream, NearMiss::Difference& difference) {
    difference.property = readText(stream);
    difference.wanted = readText(stream);
    difference.actual = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const NearMiss& miss) {
    stream << miss.object << miss.handle;
    writeList(stream, miss.differences);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, NearMiss& miss) {
    miss.object = readText(stream);
    stream >> miss.handle;
    miss.differences = readList<NearMiss::Difference>(stream, 3 * textSize);
    return stream;
}

namespace {

QList<NearMiss> readNearMisses(QDataStream& stream) {
    return readList<NearMiss>(stream, 2 * textSize + 8);
}

}  // namespace

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

QDataStream& operator<<(QDataStream& stream, const Query& body) {
    writeQuery(stream, body);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Query& body) {
    readQuery(stream, body, 0);
    return stream;
}

namespace {

Wanted readWanted(QDataStream& stream) {
    quint8 wanted = 0;
    stream >> wanted;
    if (wanted > static_cast<quint8>(Wanted::Readiness))
        setCorrupt(stream);
    return stream.status() == QDataStream::Ok ? static_cast<Wanted>(wanted) : Wanted::Existence;
}

}  // namespace

QDataStream& operator<<(QDataStream& stream, const LookUp& body) {
    return stream << body.handle << body.query << static_cast<quint8>(body.wanted)
                  << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, LookUp& body) {
    stream >> body.handle >> body.query;
    body.wanted = readWanted(stream);
    return stream >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const ItemAddress& body) {
    return stream << body.text << body.row << body.column;
}

QDataStream& operator>>(QDataStream& stream, ItemAddress& body) {
    body.text = readText(stream);
    return stream >> body.row >> body.column;
}

QDataStream& operator<<(QDataStream& stream, const Target& body) {
    return stream << body.handle << body.query << body.isItem << body.item
                  << static_cast<quint8>(body.wanted) << body.timeout << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, Target& body) {
    stream >> body.handle >> body.query >> body.isItem >> body.item;
    body.wanted = readWanted(stream);
    return stream >> body.timeout >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const Missed& body) {
    stream << body.object << body.obstacle;
    writeList(stream, body.nearMisses);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Missed& body) {
    stream >> body.object;
    body.obstacle = readText(stream);
    body.nearMisses = readNearMisses(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const LookUpResult& body) {
    stream << body.object << body.isReady << body.obstacle;
    writeList(stream, body.nearMisses);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, LookUpResult& body) {
    stream >> body.object >> body.isReady;
    body.obstacle = readText(stream);
    body.nearMisses = readNearMisses(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Expect& body) {
    return stream << body.handle << body.query << body.properties << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, Expect& body) {
    return stream >> body.handle >> body.query >> body.properties >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const FindItem& body) {
    return stream << body.handle << body.item << body.wantReady;
}

QDataStream& operator>>(QDataStream& stream, FindItem& body) {
    return stream >> body.handle >> body.item >> body.wantReady;
}

QDataStream& operator<<(QDataStream& stream, const Match& body) {
    return stream << body.object << body.bounds << body.isVisible;
}

QDataStream& operator>>(QDataStream& stream, Match& body) {
    return stream >> body.object >> body.bounds >> body.isVisible;
}

QDataStream& operator<<(QDataStream& stream, const MatchList& body) {
    stream << body.count;
    writeList(stream, body.matches);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, MatchList& body) {
    constexpr int matchSize = 8 + 2 * textSize + 4 * 4 + 1;
    stream >> body.count;
    body.matches = readList<Match>(stream, matchSize);
    if (body.count < body.matches.size())
        setCorrupt(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ScreenPoint& body) {
    return stream << body.x << body.y;
}

QDataStream& operator>>(QDataStream& stream, ScreenPoint& body) {
    return stream >> body.x >> body.y;
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
        // A child comes behind its parent, and each type is listed.
        if (object.depth < 0 || object.depth > deepest || object.type < 0 ||
            object.type >= body.types.size())
            setCorrupt(stream);
        if (stream.status() != QDataStream::Ok)
            break;
        deepest = object.depth + 1;
    }
    return stream;
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
    return stream << body.target << body.milliseconds;
}

QDataStream& operator>>(QDataStream& stream, Highlight& body) {
    return stream >> body.target >> body.milliseconds;
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
