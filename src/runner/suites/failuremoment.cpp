#include "runner/suites/failuremoment.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <algorithm>

#include "base/filewriting.h"
#include "interpreter/generic/testfunctions.h"
#include "platform/testresult/testresult.h"
#include "runner/applications/objecttree.h"

namespace Tamrix {

namespace {

/// Of the mark, in pixels.
constexpr int markRadius = 12;
constexpr int markWidth = 3;

/// Writes a new file of such a name. An empty path after a warning on failure.
QString storeFile(const QString& folder, const QString& name, const QByteArray& bytes) {
    QFile file;
    QString error;
    if (!createTargetFile(folder, QFileInfo(name), &file))
        error = file.errorString();
    else if (!writeAll(&file, bytes, &error))
        file.remove();
    if (error.isEmpty())
        return file.fileName();
    qWarning("The file '%s' could not be written: %s", qUtf8Printable(file.fileName()),
             qUtf8Printable(error));
    return {};
}

QByteArray pngOf(const QImage& image) {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    image.save(&bytes, "PNG");
    return bytes.data();
}

QRect rectOf(const QVariantList& numbers) {
    return {numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
            numbers.value(3).toInt()};
}

void drawMark(QImage* image, QPoint point) {
    QPainter painter(image);
    painter.setRenderHint(QPainter::Antialiasing);
    // Red within white stands out everywhere.
    for (const auto& [colour, width] :
         {std::pair(QColor(Qt::white), markWidth + 2), std::pair(QColor(Qt::red), markWidth)}) {
        painter.setPen(QPen(colour, width));
        painter.drawEllipse(point, markRadius, markRadius);
        painter.drawPoint(point);
    }
}

}  // namespace

std::optional<QPoint> lastPressOf(const QVariantMap& layout) {
    const QVariantList point = layout.value(QStringLiteral("lastPress")).toList();
    return point.size() == 2 ? std::optional(QPoint(point.at(0).toInt(), point.at(1).toInt()))
                             : std::nullopt;
}

QImage windowsPicture(const Screenshot& desktop, const QList<QRect>& windows,
                      const std::optional<QPoint>& lastPress) {
    QRect part;
    for (const QRect& window : windows)
        part |= desktop.nativeToImage(window) & desktop.image().rect();
    if (part.isEmpty())
        return {};
    QImage picture = desktop.image().copy(part).convertToFormat(QImage::Format_RGB32);
    // Points and lines are drawn in the image's own pixels.
    picture.setDevicePixelRatio(1);
    if (lastPress) {
        const QPoint point = desktop.nativeToImage(*lastPress);
        if (part.contains(point))
            drawMark(&picture, point - part.topLeft());
    }
    return picture;
}

void FailureMoment::reset() {
    *this = FailureMoment();
}

void FailureMoment::keep(Application& application, const Screenshot& desktop, const QString& folder,
                         TestResult* result) {
    if (!desktop.image().isNull())
        keepWindows(application, desktop, folder, result);
    keepObjects(application, folder, result);
}

void FailureMoment::keepWindows(Application& application, const Screenshot& desktop,
                                const QString& folder, TestResult* result) {
    const Outcome<QVariant> answer =
        application.access().nativeRequest(QStringLiteral("screenLayout"), {});
    if (!answer) {
        qWarning("No picture of the windows is stored: %s", qUtf8Printable(answer.error().text));
        return;
    }
    const QVariantMap layout = answer->toMap();
    QList<QRect> windows;
    const QVariantList rects = layout.value(QStringLiteral("windows")).toList();
    for (const QVariant& rect : rects)
        windows.append(rectOf(rect.toList()));
    const QImage picture = windowsPicture(desktop, windows, lastPressOf(layout));
    if (picture.isNull())
        return;
    if (picture != m_lastPicture) {
        m_lastPicture = picture;
        m_lastPictureFile = storeFile(folder, QStringLiteral("windows.png"), pngOf(picture));
    }
    if (!m_lastPictureFile.isEmpty())
        result->addResultAttachment(TestResult::ImageAttachment,
                                    QStringLiteral("The application's windows"), m_lastPictureFile);
}

void FailureMoment::keepObjects(Application& application, const QString& folder,
                                TestResult* result) {
    const Outcome<Wire::ObjectListing> listing = application.access().listing();
    if (!listing) {
        qWarning("The objects of the application are not stored: %s",
                 qUtf8Printable(listing.error().text));
        return;
    }
    const QByteArray objects = objectTreeJson(*listing);
    if (objects != m_lastObjects) {
        m_lastObjects = objects;
        m_lastObjectsFile = storeFile(folder, QStringLiteral("objects.json"), objects);
    }
    if (!m_lastObjectsFile.isEmpty())
        result->addResultAttachment(TestResult::ObjectsAttachment,
                                    QStringLiteral("The application's objects"), m_lastObjectsFile);
}

}  // namespace Tamrix
