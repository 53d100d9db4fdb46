#include "wire/observations.h"

#include <optional>

#include "wire/lists.h"
#include "wire/reading.h"
#include "wire/value.h"

namespace Tamrix::Wire {

namespace {

QDataStream& operator<<(QDataStream& stream, const ObservedObject& body) {
    return stream << body.handle << static_cast<quint8>(body.role) << body.name;
}

QDataStream& operator>>(QDataStream& stream, ObservedObject& body) {
    quint8 role = 0;
    stream >> body.handle >> role;
    if (role > static_cast<quint8>(ObservedRole::Last)) {
        setCorrupt(stream);
        return stream;
    }
    body.role = static_cast<ObservedRole>(role);
    return stream >> body.name;
}

QDataStream& operator<<(QDataStream& stream, const ObservedState& body) {
    stream << body.handle << body.text << body.check;
    writeValue(stream, body.value);
    return stream << body.isOpen;
}

QDataStream& operator>>(QDataStream& stream, ObservedState& body) {
    stream >> body.handle;
    body.text = readText(stream);
    stream >> body.check;
    body.value = readValue(stream);
    return stream >> body.isOpen;
}

QDataStream& operator<<(QDataStream& stream, const ObservedPress& body) {
    stream << body.object << body.holder;
    writeTexts(stream, body.steps);
    return stream << body.place << body.button << body.modifiers << body.hovered;
}

QDataStream& operator>>(QDataStream& stream, ObservedPress& body) {
    stream >> body.object >> body.holder;
    body.steps = readTexts(stream);
    return stream >> body.place >> body.button >> body.modifiers >> body.hovered;
}

QDataStream& operator<<(QDataStream& stream, const ObservedDoubleClick& /*body*/) {
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObservedDoubleClick& /*body*/) {
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObservedRelease& body) {
    return stream << body.distance << body.isDrag;
}

QDataStream& operator>>(QDataStream& stream, ObservedRelease& body) {
    return stream >> body.distance >> body.isDrag;
}

QDataStream& operator<<(QDataStream& stream, const ObservedWheel& body) {
    return stream << body.object;
}

QDataStream& operator>>(QDataStream& stream, ObservedWheel& body) {
    return stream >> body.object;
}

QDataStream& operator<<(QDataStream& stream, const ObservedRest& /*body*/) {
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObservedRest& /*body*/) {
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObservedChoice& body) {
    stream << body.holder;
    writeTexts(stream, body.steps);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObservedChoice& body) {
    stream >> body.holder;
    body.steps = readTexts(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObservedKey& body) {
    return stream << body.focus << body.keys << body.text;
}

QDataStream& operator>>(QDataStream& stream, ObservedKey& body) {
    stream >> body.focus;
    body.keys = readText(stream);
    body.text = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObservedShortcut& body) {
    stream << body.focus;
    writeTexts(stream, body.keys);
    return stream << body.button;
}

QDataStream& operator>>(QDataStream& stream, ObservedShortcut& body) {
    stream >> body.focus;
    body.keys = readTexts(stream);
    return stream >> body.button;
}

QDataStream& operator<<(QDataStream& stream, const ObservedClose& body) {
    return stream << body.window;
}

QDataStream& operator>>(QDataStream& stream, ObservedClose& body) {
    return stream >> body.window;
}

QDataStream& operator<<(QDataStream& stream, const ObservedVerdict& body) {
    stream << body.object;
    writeValue(stream, body.properties);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, ObservedVerdict& body) {
    stream >> body.object;
    body.properties = readValue(stream).toMap();
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ObservedMode& body) {
    return stream << body.isVerifying;
}

QDataStream& operator>>(QDataStream& stream, ObservedMode& body) {
    return stream >> body.isVerifying;
}

/// Reads the alternative of this number.
template <std::size_t index = 0>
void readAlternative(QDataStream& stream, std::size_t wanted, Observation& body) {
    if constexpr (index == std::variant_size_v<Observation>) {
        setCorrupt(stream);
    } else if (index == wanted) {
        std::variant_alternative_t<index, Observation> alternative;
        stream >> alternative;
        body = alternative;
    } else {
        readAlternative<index + 1>(stream, wanted, body);
    }
}

}  // namespace

QDataStream& operator<<(QDataStream& stream, const Observation& body) {
    stream << static_cast<quint8>(body.index());
    std::visit([&stream](const auto& each) { stream << each; }, body);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Observation& body) {
    quint8 index = 0;
    stream >> index;
    if (stream.status() == QDataStream::Ok)
        readAlternative(stream, index, body);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Record& body) {
    return stream << body.isOn << body.verifyKeys << body.isVerifying;
}

QDataStream& operator>>(QDataStream& stream, Record& body) {
    stream >> body.isOn;
    body.verifyKeys = readText(stream);
    return stream >> body.isVerifying;
}

}  // namespace Tamrix::Wire
