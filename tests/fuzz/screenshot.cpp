// Screenshots from variants. An input is read as
//
//     1 byte   how many numbers the transform has; bit 7: there is no transform
//     1 byte   bit 0: there is a density; bit 1: the image is BMP data still to be compressed
//     8 bytes  each of the transform's numbers, then the density
//     rest     the image
//
// and ends wherever the input ends.

#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <cstring>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "vision/screenshot/screenshot.h"

using Tamrix::Screenshot;

namespace {

class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size)
        : m_data(reinterpret_cast<const char*>(data)), m_left(size) {}

    template <typename Value>
    Value take() {
        Value value = {};
        const std::size_t size = std::min(sizeof(value), m_left);
        std::memcpy(&value, m_data, size);
        m_data += size;
        m_left -= size;
        return value;
    }
    QByteArray rest() const { return QByteArray(m_data, static_cast<int>(m_left)); }

private:
    const char* m_data;
    std::size_t m_left;
};

QVariantMap readMap(Bytes bytes) {
    const auto transform = bytes.take<std::uint8_t>();
    const auto flags = bytes.take<std::uint8_t>();
    QVariantMap map;
    if (transform < 0x80) {
        QVariantList list;
        for (int i = 0; i < transform; ++i)
            list.append(bytes.take<double>());
        map.insert("transform", list);
    }
    if (flags & 1)
        map.insert("density", bytes.take<double>());
    const QByteArray image = bytes.rest();
    map.insert("image", flags & 2 ? qCompress(image, 1) : image);
    return map;
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    if (size == 0)
        return 0;
    const Screenshot shot = Screenshot::fromVariant(readMap(Bytes(data, size)));
    shot.nativeToImage(shot.imageToNative(shot.image().rect()));
    shot.copy(QRect(1, 1, 5, 5));
    // Larger ones take long to compress and tell no more.
    constexpr qint64 maxBytes = 4 << 20;
    if (shot.image().isNull() || shot.image().sizeInBytes() > maxBytes)
        return 0;
    fuzzRequire(shot.rotated(1).image().width() == shot.image().height(), "a rotation turns");
    const Screenshot again = Screenshot::fromVariant(shot.toVariant());
    fuzzRequire(again.image().size() == shot.image().size(), "what was read can be written");
    fuzzRequire(again.transform() == shot.transform(), "a transform stays as it was");
    return 0;
}
