#include "vision/search/picturefile.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>

#include "base/filewriting.h"

namespace Tamrix::Vision {

Outcome<QImage> readPicture(const QString& file) {
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    if (image.isNull())
        return fail(
            FailureKind::Failed,
            QStringLiteral("the picture '%1' can't be read: %2").arg(file, reader.errorString()));
    return image;
}

Outcome<> writePicture(const QImage& image, const QString& file, const QByteArray& format) {
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly))
        return fail(FailureKind::Failed, output.errorString());
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, format);
    if (!writer.write(image))
        return fail(FailureKind::Failed, writer.errorString());
    QString reason;
    if (!writeAll(&output, bytes.data(), &reason))
        return fail(FailureKind::Failed, reason);
    if (!output.commit())
        return fail(FailureKind::Failed, output.errorString());
    return {};
}

}  // namespace Tamrix::Vision
