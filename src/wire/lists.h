#pragma once

#include <QList>
#include <QStringList>

#include "wire/messages.h"
#include "wire/reading.h"

/// How lists travel. Internal to the encodings: nobody else includes it.
namespace Tamrix::Wire {

/// Smallest encoding of a text: its length.
inline constexpr int textSize = 4;

inline void writeTexts(QDataStream& stream, const QStringList& texts) {
    stream << static_cast<quint32>(texts.size());
    for (const QString& text : texts)
        stream << text;
}

inline QStringList readTexts(QDataStream& stream) {
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

QList<NearMiss> readNearMisses(QDataStream& stream);

}  // namespace Tamrix::Wire
