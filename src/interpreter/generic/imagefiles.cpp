#include "interpreter/generic/imagefiles.h"

#include "interpreter/generic/desktopscreenshot.h"
#include "vision/search/picturefile.h"

namespace Tamrix {

QString saveScreenshotFromCurrentAutContext(const QFileInfo& file, const QString& format) {
    const QImage image = takeDesktopScreenshot().image();
    if (image.isNull())
        return QStringLiteral("Screenshot taken from the desktop is invalid");
    const QString path = file.absoluteFilePath();
    const Outcome<> written = Vision::writePicture(image, path, format.toUtf8());
    if (!written)
        return QStringLiteral("Failed to save \"%1\" file: %2").arg(path, written.error().text);
    return {};
}

}  // namespace Tamrix
