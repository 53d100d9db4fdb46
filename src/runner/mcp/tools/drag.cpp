#include <QPoint>

#include "platform/objectmodel/valueobject.h"
#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

Outcome<QRect> boundsOf(const Meant& meant) {
    Access& access = meant.application->access();
    const Outcome<SharedPtr<Object>> object =
        meant.object ? meant.object : access.findObject(ObjectName(meant.name));
    if (!object)
        return fail(object.error());
    const Outcome<SharedPtr<Object>> bounds = access.globalBounds(*object);
    if (!bounds)
        return fail(bounds.error());
    return unwrapRemoteScreenRectangleAsQRect(*bounds);
}

/// From a point of the screen to the middle of what is seen of an object.
Outcome<QPoint> distanceTo(Session& session, const QString& to, const QPoint& start) {
    const Outcome<Meant> meant = session.meant(to);
    if (!meant)
        return fail(meant.error());
    const Outcome<QRect> seen = session.seenPart(*meant);
    if (!seen)
        return fail(seen.error());
    if (seen->isEmpty())
        return fail(
            FailureKind::NotReady,
            QStringLiteral("drag: %1 is out of sight: scroll to it first").arg(meant->text));
    return seen->center() - start;
}

Outcome<ToolAnswer> drag(Session& session, const Arguments& arguments) {
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    const Outcome<QRect> bounds = boundsOf(*meant);
    if (!bounds)
        return fail(bounds.error());
    const Outcome<QRect> seen = session.seenPart(*meant);
    if (!seen)
        return fail(seen.error());
    // 1. The start: where it is said, else the middle of what is seen; the rest is scrolled to.
    const QPoint middle = (seen->isEmpty() ? *bounds : *seen).center() - bounds->topLeft();
    const QPoint start(arguments.integer("x").value_or(middle.x()),
                       arguments.integer("y").value_or(middle.y()));
    // 2. The distance.
    QPoint distance(arguments.integer("dx").value_or(0), arguments.integer("dy").value_or(0));
    if (arguments.has("to")) {
        const Outcome<QPoint> found =
            distanceTo(session, arguments.text("to"), bounds->topLeft() + start);
        if (!found)
            return fail(found.error());
        distance += *found;
    } else if (distance.isNull()) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("drag: 'to', or 'dx' and 'dy', tell where to"));
    }
    ActArguments others;
    for (const int number : {start.x(), start.y(), distance.x(), distance.y()})
        others.add(number);
    return actOn(session, meant, "drag", others);
}

}  // namespace

Tool dragTool() {
    return {"drag",
            "From x,y in the target (default: its middle) by dx,dy or to the middle of another",
            {targetParameter,
             {"to", ParameterType::Text, Parameter::Optional},
             {"x", ParameterType::Integer, Parameter::Optional},
             {"y", ParameterType::Integer, Parameter::Optional},
             {"dx", ParameterType::Integer, Parameter::Optional},
             {"dy", ParameterType::Integer, Parameter::Optional}},
            drag};
}

}  // namespace Tamrix::Mcp
