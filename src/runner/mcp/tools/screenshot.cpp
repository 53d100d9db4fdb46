#include <QBuffer>
#include <algorithm>

#include "platform/objectmodel/valueobject.h"
#include "runner/mcp/tools/acting.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix::Mcp {

namespace {

constexpr int defaultWidth = 800;
constexpr int largestWidth = 4096;

/// What is shown: the object, or all windows.
Outcome<QRect> wantedPlace(Session& session, const Arguments& arguments) {
    if (!arguments.has("target")) {
        const Outcome<const View*> view = session.look();
        if (!view)
            return fail(view.error());
        QRect place;
        for (const ViewObject& object : **view) {
            if (object.parent < 0)
                place |= object.facts.geometry;
        }
        return place;
    }
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    Access& access = meant->application->access();
    const Outcome<SharedPtr<Object>> object =
        meant->object ? meant->object : access.findObject(ObjectName(meant->name));
    if (!object)
        return fail(object.error());
    const Outcome<SharedPtr<Object>> bounds = access.globalBounds(*object);
    if (!bounds)
        return fail(bounds.error());
    return unwrapRemoteScreenRectangleAsQRect(*bounds);
}

Outcome<ToolAnswer> screenshot(Session& session, const Arguments& arguments) {
    const int width = arguments.integer("width").value_or(defaultWidth);
    if (width < 1 || width > largestWidth)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("screenshot: 'width' is from 1 to %1").arg(largestWidth));
    const Outcome<QRect> place = wantedPlace(session, arguments);
    if (!place)
        return fail(place.error());
    const SharedPtr<Application> application = session.applications().current();
    const Outcome<QVariant> answer =
        application->access().nativeRequest(QStringLiteral("desktopScreenshot"), {});
    if (!answer)
        return fail(answer.error());
    const Screenshot desktop = Screenshot::fromVariant(*answer);
    const QRect wanted = desktop.nativeToImage(*place) & desktop.image().rect();
    if (wanted.isEmpty())
        return fail(FailureKind::NotFound, QStringLiteral("nothing of it is on the screen"));
    QImage picture = desktop.image().copy(wanted);
    if (picture.width() > width)
        picture = picture.scaledToWidth(width, Qt::SmoothTransformation);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG"))
        return fail(FailureKind::Failed, QStringLiteral("the picture can't be made"));
    return ToolAnswer{QStringLiteral("%1,%2 %3x%4, shown as %5x%6\n")
                          .arg(QString::number(place->x()), QString::number(place->y()),
                               QString::number(place->width()), QString::number(place->height()),
                               QString::number(picture.width()), QString::number(picture.height())),
                      buffer.data()};
}

}  // namespace

Tool screenshotTool() {
    return {"screenshot",
            "A picture of the target, or of all windows",
            {{"target", ParameterType::Text, Parameter::Optional},
             {"width", ParameterType::Integer, Parameter::Optional, "at most; default 800"}},
            screenshot};
}

}  // namespace Tamrix::Mcp
