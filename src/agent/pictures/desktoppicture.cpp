#include "agent/pictures/desktoppicture.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"

namespace Tamrix::Agent {

namespace {

QImage composedWindows(const QRect& desktop, double density) {
    QImage image((QSizeF(desktop.size()) * density).toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    image.setDevicePixelRatio(density);
    QPainter painter(&image);
    const QVector<QWindow*> windows = windowStack();
    for (QWindow* window : windows) {
        if (window->property(internalWindowProperty).isValid())
            continue;
        const Element element = Session::self()->element(window);
        if (element.isNull())
            continue;
        const QRect bounds = element.toolkit->globalBounds(element);
        const QImage picture = element.toolkit->grab(element);
        painter.setOpacity(window->opacity());
        painter.drawImage(bounds.translated(-desktop.topLeft()), picture);
    }
    return image;
}

}  // namespace

Picture desktopPicture() {
    Picture picture;
    QScreen* const screen = QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return picture;
    const QRect desktop = screen->virtualGeometry();
    picture.origin = desktop.topLeft();
    picture.density = screen->devicePixelRatio();
    picture.image = screen->grabWindow(0).toImage();
    if (picture.image.isNull())
        picture.image = composedWindows(desktop, picture.density);
    picture.scale = static_cast<double>(picture.image.width()) / qMax(1, desktop.width());
    return picture;
}

}  // namespace Tamrix::Agent
