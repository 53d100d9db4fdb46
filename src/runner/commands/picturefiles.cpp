#include "runner/commands/picturefiles.h"

#include <json/json.h>

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>
#include <algorithm>
#include <stdexcept>

#include "base/filewriting.h"
#include "base/nativebytes.h"
#include "runner/commands/option.h"
#include "vision/search/frame.h"
#include "vision/search/imagelookup.h"

namespace Tamrix {

using Vision::SearchRegion;

void giveUpOnPicture(const QString& text) {
    throw std::runtime_error(toNativeBytes(text).toStdString());
}

Picture loadPicture(const QString& file) {
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    if (image.isNull()) {
        giveUpOnPicture(
            QStringLiteral("the picture '%1' can't be read: %2").arg(file, reader.errorString()));
    }
    return {file, Vision::searchable(image)};
}

Outcome<SearchRegion> readRegionOption(const QString& value) {
    try {
        return SearchRegion(value);
    } catch (const std::runtime_error& error) {
        return wrongUsage(
            QStringLiteral("--region '%1': %2").arg(value, QString::fromUtf8(error.what())));
    }
}

SearchRegion regionToSearch(const SearchRegion& region, const Picture& picture) {
    const QRect whole = picture.image.rect();
    if (region.isEmpty())
        return SearchRegion(whole);
    const QList<QRect>& rectangles = region.rectangles();
    if (std::none_of(rectangles.begin(), rectangles.end(),
                     [&](const QRect& each) { return each.intersects(whole); })) {
        giveUpOnPicture(QStringLiteral("the region %1 lies outside '%2', which has %3x%4 pixels")
                            .arg(region.description(), picture.file, QString::number(whole.width()),
                                 QString::number(whole.height())));
    }
    return region;
}

void storeFramed(const QString& file, const QImage& picture, const QList<QRect>& rectangles) {
    QImage image = picture.convertToFormat(QImage::Format_RGB32);
    for (const QRect& rectangle : rectangles)
        Vision::drawFrame(&image, rectangle);

    const auto failWithReason = [&](const QString& reason) {
        giveUpOnPicture(QStringLiteral("the picture '%1' can't be written: %2").arg(file, reason));
    };
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly))
        failWithReason(output.errorString());
    const QString suffix = QFileInfo(file).suffix();
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, suffix.isEmpty() ? "png" : suffix.toLatin1().toLower());
    if (!writer.write(image))
        failWithReason(writer.errorString());
    QString reason;
    if (!writeAll(&output, bytes.data(), &reason))
        failWithReason(reason);
    if (!output.commit())
        failWithReason(output.errorString());
}

QByteArray jsonText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "    ";
    builder["precision"] = 9;
    builder["emitUTF8"] = true;
    return QByteArray::fromStdString(Json::writeString(builder, value)) + '\n';
}

}  // namespace Tamrix
