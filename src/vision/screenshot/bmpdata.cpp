#include "vision/screenshot/bmpdata.h"

#include <zlib.h>

#include <QtEndian>
#include <cstdlib>

namespace Tamrix::Vision {

namespace {

/// The length in front of what qCompress() makes.
constexpr int lengthSize = 4;
/// How many times its size a deflated stream can hold at most.
constexpr qint64 maxDeflateRatio = 1032;

// A BMP file has a file header of 14 bytes, then a header that begins with its own size. The oldest
// form of the latter has narrower fields.
constexpr int fileHeaderSize = 14;
constexpr int infoHeaderSize = 40;
constexpr quint32 oldInfoHeaderSize = 12;

enum class Compression : quint32 { None = 0, RunLength8 = 1, RunLength4 = 2, BitFields = 3 };

struct BmpSize {
    qint64 width;
    qint64 height;
    qint64 bitsPerPixel;
    Compression compression;
};

template <typename Number>
Number numberAt(const uchar* data, int offset) {
    return qFromLittleEndian<Number>(data + fileHeaderSize + offset);
}

BmpSize readSize(const uchar* data) {
    if (numberAt<quint32>(data, 0) == oldInfoHeaderSize)
        return {numberAt<quint16>(data, 4), numberAt<quint16>(data, 6), numberAt<quint16>(data, 10),
                Compression::None};
    return {numberAt<qint32>(data, 4), std::abs(qint64(numberAt<qint32>(data, 8))),
            numberAt<quint16>(data, 14), Compression(numberAt<quint32>(data, 16))};
}

/// Whether the size is that of an image which the data can hold. The memory for the image is taken
/// by its decoder before it looks at the pixels.
bool isSensible(const BmpSize& size, int length) {
    constexpr qint64 bytesPerDecodedPixel = 4;
    if (size.width <= 0 || size.height <= 0 ||
        size.height > maxImageBytes / bytesPerDecodedPixel / size.width)
        return false;
    const bool isRunLength =
        size.compression == Compression::RunLength8 || size.compression == Compression::RunLength4;
    const qint64 bytesPerLine = (size.width * size.bitsPerPixel + 31) / 32 * 4;
    return isRunLength || size.height * bytesPerLine <= length;
}

}  // namespace

QByteArray uncompressed(const QByteArray& data) {
    if (data.size() <= lengthSize)
        return {};
    const qint64 length = qFromBigEndian<quint32>(data.constData());
    const qint64 compressedLength = data.size() - lengthSize;
    if (length > maxImageBytes || length / maxDeflateRatio > compressedLength)
        return {};
    QByteArray raw(static_cast<int>(length), Qt::Uninitialized);
    auto rawLength = static_cast<uLongf>(length);
    const auto* source = reinterpret_cast<const Bytef*>(data.constData()) + lengthSize;
    if (::uncompress(reinterpret_cast<Bytef*>(raw.data()), &rawLength, source,
                     static_cast<uLong>(compressedLength)) != Z_OK)
        return {};
    raw.resize(static_cast<int>(rawLength));
    return raw;
}

QImage imageFromBmp(const uchar* data, int length) {
    QImage image;
    if (length >= fileHeaderSize + infoHeaderSize && isSensible(readSize(data), length))
        image.loadFromData(data, length, "BMP");
    return image;
}

}  // namespace Tamrix::Vision
