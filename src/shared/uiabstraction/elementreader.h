#pragma once

#include <QDataStream>
#include <QHash>
#include <QImage>
#include <QMap>
#include <QString>
#include <QStringList>

#include "shared/uiabstraction/elementgeometry.h"
#include "shared/uiabstraction/standardtype.h"
#include "shared/uiabstraction/uievent.h"

namespace Tamrix::UIAbstraction {

/// Reads what elements are made of from a stream that comes from outside and may be damaged or made
/// to do harm. After the first thing that can't be read the stream's status tells so, and nothing
/// is read any more: each operation then leaves its target as it was. No count and no length of the
/// stream is believed: memory grows with the bytes that are there.
class ElementReader {
public:
    /// Deepest level of elements, the top-level ones being level 1.
    static constexpr int maxDepth = 512;
    /// Most elements of one stream.
    static constexpr int maxElements = 1'000'000;
    /// Most memory for the decoded images of one stream, in bytes. An image above what is left of
    /// it becomes a null image, with a warning.
    static constexpr qint64 maxImageMemory = 512LL << 20;

    /// The stream must outlive the reader.
    explicit ElementReader(QDataStream* stream) : m_stream(stream) {}

    bool isOk() const { return m_stream->status() == QDataStream::Ok; }
    /// Whether one more element may begin here, on that level; a breach of a limit is marked in the
    /// stream.
    bool beginElement(int depth);

    void read(QString* value);
    void read(bool* value);
    void read(StandardType* value);
    void read(ElementGeometry* value);
    void read(QStringList* value);
    void read(QHash<QString, QString>* value);
    void read(QMap<UIEvent, int>* value);
    /// An image that is there but can't be decoded becomes a null image, and reading goes on.
    void read(QImage* value);
    /// A number of things to come; 0 when there is none to read.
    int readCount();

private:
    template <typename Value>
    bool readValue(Value* value);
    void fail(QDataStream::Status status) { m_stream->setStatus(status); }
    bool append(QByteArray* bytes, quint32 count);
    bool readPng(QByteArray* png);
    bool mayDecode(const QByteArray& png);

    QDataStream* m_stream;
    int m_elements = 0;
    qint64 m_imageMemory = 0;
};

}  // namespace Tamrix::UIAbstraction
