#include "agent/pictures/picturehandlers.h"

#include <QBitmap>
#include <QBuffer>
#include <QIcon>
#include <QImage>
#include <QPixmap>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "agent/input/idlewatch.h"
#include "agent/input/pointer.h"
#include "agent/pictures/desktoppicture.h"
#include "agent/pictures/highlight.h"
#include "agent/readiness/target.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix::Agent {

namespace {

void replyPicture(const Picture& picture, const ResponderPtr& responder) {
    const QTransform transform(1 / picture.scale, 0, 0, 1 / picture.scale, picture.origin.x(),
                               picture.origin.y());
    const Screenshot screenshot(picture.image, transform, picture.density);
    responder->replyBody(Wire::Value{screenshot.toVariant(picture.origin, picture.scale)});
}

void desktopScreenshot(const QVariantList& /*arguments*/, const ResponderPtr& responder) {
    const Picture picture = desktopPicture();
    if (picture.image.isNull())
        responder->fail(FailureKind::Failed,
                        QStringLiteral("there is no screen to take a picture of"));
    else
        replyPicture(picture, responder);
}

QVariantList numbers(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

/// Where the application's windows are on the screen, and where a button was pressed last:
/// "windows" is a list of lists of x, y, width and height, "lastPress" a list of x and y if there
/// was one.
void screenLayout(const QVariantList& /*arguments*/, const ResponderPtr& responder) {
    QVariantList windows;
    const QVector<QWindow*> stack = windowStack();
    for (const QWindow* window : stack) {
        if (!window->property(internalWindowProperty).isValid())
            windows.append(QVariant(numbers(window->frameGeometry())));
    }
    QVariantMap layout{{QStringLiteral("windows"), windows}};
    if (const std::optional<QPoint> press = Pointer::self().lastPress())
        layout.insert(QStringLiteral("lastPress"), QVariantList{press->x(), press->y()});
    responder->replyBody(Wire::Value{layout});
}

/// The element that the first argument names; null when the request has failed.
Element argumentElement(const QVariantList& arguments, const ResponderPtr& responder) {
    const QVariant first = arguments.value(0);
    const quint64 handle = first.userType() == qMetaTypeId<Wire::ObjectInfo>()
                               ? first.value<Wire::ObjectInfo>().handle
                               : first.toULongLong();
    return Session::self()->findOrFail(handle, responder);
}

void replyGrab(quint64 handle, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(handle, responder);
    if (element.isNull())
        return;
    Picture picture;
    picture.image = element.toolkit->grab(element);
    const QRect bounds = element.toolkit->globalBounds(element);
    if (picture.image.isNull() || bounds.isEmpty()) {
        responder->fail(FailureKind::NotReady, QStringLiteral("%1 is not ready: it is not visible")
                                                   .arg(Session::self()->describe(element)));
        return;
    }
    picture.origin = bounds.topLeft();
    picture.scale = static_cast<double>(picture.image.width()) / bounds.width();
    picture.density = picture.image.devicePixelRatio();
    replyPicture(picture, responder);
}

/// Arguments: object, flags, delay. No flags have a meaning yet. The delay is the time that the
/// object gets to paint itself; it is over when the application is idle.
void grabObjectScreenshot(const QVariantList& arguments, const ResponderPtr& responder) {
    const Element element = argumentElement(arguments, responder);
    if (element.isNull())
        return;
    const quint64 handle = Session::self()->handle(element);
    if (arguments.value(2, 0).toInt() <= 0)
        replyGrab(handle, responder);
    else
        IdleWatch::start([handle, responder] { replyGrab(handle, responder); });
}

/// What is drawn of an icon.
QImage iconImage(const QIcon& icon, const Element& element) {
    QSize size = element.object->property("iconSize").toSize();
    const QList<QSize> sizes = icon.availableSizes();
    for (const QSize& available : sizes)
        size = size.expandedTo(available);
    constexpr QSize usual(32, 32);
    return icon.pixmap(size.isEmpty() ? usual : size).toImage();
}

QImage toImage(const QVariant& value, const Element& element) {
    switch (value.userType()) {
        case QMetaType::QPixmap:
        case QMetaType::QBitmap:
            return value.value<QPixmap>().toImage();
        case QMetaType::QImage:
            return value.value<QImage>();
        case QMetaType::QIcon:
            return iconImage(value.value<QIcon>(), element);
        default:
            return QImage();
    }
}

QImage ownPicture(const Element& element) {
    if (element.index.isValid())
        return toImage(element.index.data(Qt::DecorationRole), element);
    for (const char* const name : {"pixmap", "image", "icon"}) {
        bool isKnown = false;
        const QImage image = toImage(
            element.toolkit->property(element, QString::fromLatin1(name), &isKnown), element);
        if (!image.isNull())
            return image;
    }
    return QImage();
}

void getPixmapAsImage(const QVariantList& arguments, const ResponderPtr& responder) {
    const Element element = argumentElement(arguments, responder);
    if (element.isNull())
        return;
    const QImage image = ownPicture(element);
    if (image.isNull()) {
        responder->fail(
            FailureKind::Refused,
            QStringLiteral("%1 has no picture of its own").arg(Session::self()->describe(element)));
        return;
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    responder->replyBody(Wire::Value{bytes});
}

/// Arguments: view, first row, first column, number of rows, number of columns; -1 for all. Gives a
/// map of the counts, the texts and the backgrounds, four bytes each: alpha, red, green, blue.
void viewCells(const QVariantList& arguments, const ResponderPtr& responder) {
    const Element element = argumentElement(arguments, responder);
    if (element.isNull())
        return;
    const auto number = [&arguments](int index, int missing) {
        return arguments.value(index, missing).toInt();
    };
    const Outcome<ViewCells> cells =
        element.toolkit->cells(element, {number(1, 0), number(2, 0), number(3, -1), number(4, -1)});
    if (!cells) {
        responder->fail(cells.error().kind, cells.error().text);
        return;
    }
    QByteArray backgrounds;
    for (const QRgb color : cells->backgrounds) {
        for (const int channel : {qAlpha(color), qRed(color), qGreen(color), qBlue(color)})
            backgrounds.append(static_cast<char>(channel));
    }
    responder->replyBody(
        Wire::Value{QVariantMap{{QStringLiteral("rowCount"), cells->rowCount},
                                {QStringLiteral("columnCount"), cells->columnCount},
                                {QStringLiteral("columns"), cells->columns},
                                {QStringLiteral("texts"), cells->texts},
                                {QStringLiteral("backgrounds"), backgrounds}}});
}

struct NativeFunction {
    const char* name;
    void (*run)(const QVariantList& arguments, const ResponderPtr& responder);
};

constexpr NativeFunction nativeFunctions[] = {
    {"desktopScreenshot", desktopScreenshot},
    {"screenLayout", screenLayout},
    {"grabObjectScreenshot", grabObjectScreenshot},
    {"getPixmapAsImage", getPixmapAsImage},
    {"viewCells", viewCells},
};

void handleNativeRequest(const Wire::NativeRequest& request, const ResponderPtr& responder) {
    for (const NativeFunction& function : nativeFunctions)
        if (request.name == QLatin1String(function.name)) {
            function.run(request.arguments, responder);
            return;
        }
    responder->fail(FailureKind::Refused,
                    QStringLiteral("the agent knows no native request '%1'").arg(request.name));
}

void startHighlight(Highlight* highlight, const Element& element, int milliseconds,
                    const ResponderPtr& responder) {
    if (!element.toolkit->isVisible(element) || element.toolkit->visibleBounds(element).isEmpty()) {
        responder->fail(FailureKind::NotReady, QStringLiteral("%1 is not ready: it is not visible")
                                                   .arg(Session::self()->describe(element)));
        return;
    }
    highlight->start(element, milliseconds);
    responder->reply();
}

}  // namespace

void registerPictureHandlers(Session* session) {
    using Wire::MessageType;
    session->setBodyHandler<Wire::NativeRequest>(MessageType::NativeRequest, handleNativeRequest);
    auto* const highlight = new Highlight(session);
    session->setBodyHandler<Wire::Highlight>(
        MessageType::Highlight,
        [highlight](const Wire::Highlight& request, const ResponderPtr& responder) {
            whenThere(request.target, responder,
                      [highlight, responder, time = request.milliseconds](const Element& element) {
                          startHighlight(highlight, element, time, responder);
                      });
        });
    session->setHandler(MessageType::StopHighlight,
                        [highlight](const QByteArray&, const ResponderPtr& responder) {
                            highlight->stop();
                            responder->reply();
                        });
}

}  // namespace Tamrix::Agent
