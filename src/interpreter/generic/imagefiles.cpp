#include "interpreter/generic/imagefiles.h"

#include <QImageWriter>
#include <QSaveFile>

#include "interpreter/generic/desktopscreenshot.h"

namespace Tamrix {

Outcome<> writeImageFile(const QImage& image, const QString& path, const QByteArray& format) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(FailureKind::Failed, file.errorString());
    QImageWriter writer(&file, format);
    if (!writer.write(image))
        return fail(FailureKind::Failed, writer.errorString());
    if (!file.commit())
        return fail(FailureKind::Failed, file.errorString());
    return {};
}

QString saveScreenshotFromCurrentAutContext(const QFileInfo& file, const QString& format) {
    const QImage image = takeDesktopScreenshot().image();
    if (image.isNull())
        return QStringLiteral("Screenshot taken from the desktop is invalid");
    const QString path = file.absoluteFilePath();
    const Outcome<> written = writeImageFile(image, path, format.toUtf8());
    if (!written)
        return QStringLiteral("Failed to save \"%1\" file: %2").arg(path, written.error().text);
    return {};
}

}  // namespace Tamrix
