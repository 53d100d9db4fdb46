#include "shared/uiabstraction/elementreader.h"

#include <QtEndian>
#include <array>

namespace Tamrix::UIAbstraction {

namespace {

// A PNG file: a signature, then chunks. Each has the length of its data, a type of four letters,
// the data and a checksum. The first is the header.
constexpr char pngSignature[] = "\x89PNG\r\n\x1a\n";
constexpr int pngSignatureSize = 8;
constexpr int chunkFrameSize = 8;
constexpr int checksumSize = 4;
constexpr int headerDataSize = 13;
constexpr int headerDataAt = pngSignatureSize + chunkFrameSize;

/// How many times its size a deflated stream can hold at most.
constexpr qint64 maxDeflateRatio = 1032;

/// Colour samples for each pixel, by the header's colour type; 0 for an impossible one.
constexpr std::array<int, 7> samplesOfColourType = {1, 0, 3, 1, 2, 0, 4};

quint32 bigEndian(const QByteArray& bytes, int at) {
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

}  // namespace

bool ElementReader::beginElement(int depth) {
    if (isOk() && m_stream->atEnd())
        fail(QDataStream::ReadPastEnd);
    if (isOk() && (depth > maxDepth || m_elements == maxElements))
        fail(QDataStream::ReadCorruptData);
    m_elements += isOk();
    return isOk();
}

template <typename Value>
bool ElementReader::readValue(Value* value) {
    if (!isOk())
        return false;
    Value candidate;
    *m_stream >> candidate;
    if (!isOk())
        return false;
    *value = candidate;
    return true;
}

void ElementReader::read(QString* value) {
    readValue(value);
}

void ElementReader::read(bool* value) {
    readValue(value);
}

void ElementReader::read(StandardType* value) {
    QString name;
    if (readValue(&name))
        *value = StandardType(name);
}

void ElementReader::read(ElementGeometry* value) {
    readValue(value);
}

void ElementReader::read(QStringList* value) {
    const auto count = static_cast<quint32>(readCount());
    QString text;
    for (quint32 i = 0; i < count && readValue(&text); ++i)
        value->append(text);
}

void ElementReader::read(QHash<QString, QString>* value) {
    const auto count = static_cast<quint32>(readCount());
    QString name, text;
    for (quint32 i = 0; i < count && readValue(&name) && readValue(&text); ++i)
        value->insert(name, text);
}

void ElementReader::read(QMap<UIEvent, int>* value) {
    const int count = readCount();
    QString name;
    qint32 usage = 0;
    for (int i = 0; i < count && readValue(&name) && readValue(&usage); ++i)
        value->insert(UIEvent(name), usage);
}

int ElementReader::readCount() {
    qint32 count = 0;
    readValue(&count);
    return count;
}

void ElementReader::read(QImage* value) {
    if (readCount() == 0)
        return;
    QByteArray png;
    if (readPng(&png) && mayDecode(png))
        *value = QImage::fromData(png, "PNG");
}

/// Moves bytes of the stream to the end of what was read already.
bool ElementReader::append(QByteArray* bytes, quint32 count) {
    if (!isOk())
        return false;
    if (count > m_stream->device()->bytesAvailable()) {
        fail(QDataStream::ReadPastEnd);
        return false;
    }
    const int before = bytes->size();
    bytes->resize(before + static_cast<int>(count));
    if (m_stream->readRawData(bytes->data() + before, static_cast<int>(count)) !=
        static_cast<int>(count))
        fail(QDataStream::ReadPastEnd);
    return isOk();
}

/// Takes a whole PNG file out of the stream, which doesn't tell its length, and checks no more of
/// it than where it ends.
bool ElementReader::readPng(QByteArray* png) {
    if (!append(png, pngSignatureSize))
        return false;
    if (*png != QByteArray::fromRawData(pngSignature, pngSignatureSize)) {
        fail(QDataStream::ReadCorruptData);
        return false;
    }
    QByteArray type;
    while (type != "IEND") {
        const int at = png->size();
        if (!append(png, chunkFrameSize))
            return false;
        const quint32 length = bigEndian(*png, at);
        type = png->mid(at + 4, 4);
        if (length > (1U << 30)) {
            fail(QDataStream::ReadCorruptData);
            return false;
        }
        if (!append(png, length + checksumSize))
            return false;
    }
    return true;
}

/// Whether decoding takes no more memory than is left and than the file's size can stand for.
bool ElementReader::mayDecode(const QByteArray& png) {
    if (png.size() < headerDataAt + headerDataSize || png.mid(headerDataAt - 4, 4) != "IHDR")
        return false;
    const quint32 width = bigEndian(png, headerDataAt);
    const quint32 height = bigEndian(png, headerDataAt + 4);
    const auto bitsPerSample = static_cast<uchar>(png.at(headerDataAt + 8));
    const auto colourType = static_cast<uchar>(png.at(headerDataAt + 9));
    constexpr quint32 maxEdge = 1'000'000;
    if (width == 0 || width > maxEdge || height == 0 || height > maxEdge || bitsPerSample > 16 ||
        colourType >= samplesOfColourType.size())
        return false;

    const qint64 bitsPerLine = qint64(width) * bitsPerSample * samplesOfColourType[colourType];
    const qint64 dataSize = qint64(height) * (1 + (bitsPerLine + 7) / 8);
    if (dataSize / maxDeflateRatio > png.size())
        return false;

    const qint64 memory = qint64(width) * height * (bitsPerSample == 16 ? 8 : 4);
    if (memory > maxImageMemory - m_imageMemory) {
        qWarning(
            "An image of %u by %u pixels was left out: the images of the elements take more "
            "than %lld MiB",
            width, height, maxImageMemory >> 20);
        return false;
    }
    m_imageMemory += memory;
    return true;
}

}  // namespace Tamrix::UIAbstraction
