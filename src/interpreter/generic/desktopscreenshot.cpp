#include "interpreter/generic/desktopscreenshot.h"

#include "platform/objectmodel/inspector.h"

namespace Tamrix {

Screenshot takeDesktopScreenshot() {
    Inspector* const inspector = Inspector::self();
    // What failed earlier is not why there is no picture.
    const Failure before = inspector->lastFailure();
    inspector->setLastError(QString());
    const Screenshot screenshot =
        Screenshot::fromVariant(inspector->nativeRequest(QStringLiteral("desktopScreenshot"), {}));
    if (!screenshot.image().isNull())
        inspector->keep(before);
    return screenshot;
}

}  // namespace Tamrix
