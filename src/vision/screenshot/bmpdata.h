#pragma once

#include <QByteArray>
#include <QImage>

namespace Tamrix::Vision {

/// Most bytes that a compressed image may stand for, and most memory that a decoded one may take.
inline constexpr qint64 maxImageBytes = 512LL << 20;

/// What qCompress() made of some bytes. Unlike qUncompress() this never takes more memory than the
/// length in front of the data asks for, and no more than that much data can stand for. Empty when
/// the data is damaged, or when it stands for more than maxImageBytes.
QByteArray uncompressed(const QByteArray& data);

/// The image in the bytes of a BMP file. Null when the data is damaged, when the size in its header
/// is more than its pixels make, or when the image would take more than maxImageBytes.
QImage imageFromBmp(const uchar* data, int length);

}  // namespace Tamrix::Vision
