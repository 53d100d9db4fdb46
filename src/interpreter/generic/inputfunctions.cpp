#include "interpreter/generic/inputfunctions.h"

#include "base/boundedgeometry.h"
#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

/// What RunnerInterface::mouseEvent() is told of what it is given.
enum MouseMask { WithTarget = 1, WithCoordinates = 8 };

constexpr int leftButton = 1;

/// What the functions of this file are to those who are told of names that find nothing.
QString mouseEventName() {
    return QStringLiteral("mouseEvent");
}

struct MouseArguments {
    SharedPtr<Object> target;
    int mask = 0;
    int x = 0;
    int y = 0;
    int button = leftButton;
    int modifiers = 0;
};

/// Takes the next argument as a number; false with the error set when it is none.
bool takeNumber(ScriptContext* context, const char* what, int* next, int* number) {
    const SharedPtr<ScriptArgument> argument = context->argument((*next)++);
    if (!argument->isNumber()) {
        context->setError(QStringLiteral("Invalid type of %1 value").arg(QLatin1String(what)));
        return false;
    }
    *number = intOf(argument);
    return true;
}

/// Whether the arguments stand at the places of their parameters: some were given by name, or some
/// in the middle were left out.
bool areArgumentsPlaced(ScriptContext* context) {
    bool arePlaced = context->hasNamedArguments();
    for (int index = 0; index < context->argumentCount(); ++index)
        arePlaced = arePlaced || !context->argument(index);
    return arePlaced;
}

/// Reads [object, x, y, button, modifiers], each of which may be left out; false with the error
/// set.
bool readPlacedMouseArguments(ScriptContext* context, bool buttonChange, MouseArguments* mouse) {
    const SharedPtr<ScriptArgument> target = context->argument(0);
    const bool hasPlace = context->argument(1) && context->argument(2);
    const bool hasPart = context->argument(1) || context->argument(2);
    if ((target && !target->isObject() && !isStringOrObjectName(target)) || hasPart != hasPlace ||
        (!buttonChange && !hasPlace) || context->argumentCount() > (buttonChange ? 5 : 3)) {
        context->setError("Overload not found");
        return false;
    }
    if (target) {
        mouse->target = findObjectOf(context, target, mouseEventName());
        if (!mouse->target)
            return false;
        mouse->mask |= WithTarget;
    }
    if (hasPlace)
        mouse->mask |= WithCoordinates;
    const struct {
        const char* name;
        int* number;
    } numbers[] = {{"x", &mouse->x},
                   {"y", &mouse->y},
                   {"button", &mouse->button},
                   {"modifiers", &mouse->modifiers}};
    int next = 1;
    for (const auto& [name, number] : numbers) {
        if (!context->argument(next))
            ++next;
        else if (!takeNumber(context, name, &next, number))
            return false;
    }
    return true;
}

/// Picks the overload step by step; false with the error set when there is none.
bool readMouseArguments(ScriptContext* context, bool buttonChange, MouseArguments* mouse) {
    if (areArgumentsPlaced(context))
        return readPlacedMouseArguments(context, buttonChange, mouse);
    const int count = context->argumentCount();
    int next = 0;
    // 1. A target, as object or by name.
    if (count > 0 &&
        (context->argument(0)->isObject() || isStringOrObjectName(context->argument(0)))) {
        mouse->target = findObjectOf(context, context->argument(0), mouseEventName());
        if (!mouse->target)
            return false;
        mouse->mask |= WithTarget;
        next = 1;
    }
    // 2. Coordinates, which a move must have and a button has only with something behind them.
    const int remaining = count - next;
    const bool isMove = !buttonChange;
    if (remaining > 2 || (isMove && remaining == 2)) {
        if (!takeNumber(context, "x", &next, &mouse->x) ||
            !takeNumber(context, "y", &next, &mouse->y))
            return false;
        mouse->mask |= WithCoordinates;
    } else if (isMove) {
        context->setError("Overload not found");
        return false;
    }
    // 3. Button and modifiers.
    if (buttonChange && next < count && !takeNumber(context, "button", &next, &mouse->button))
        return false;
    if (buttonChange && next < count && !takeNumber(context, "modifiers", &next, &mouse->modifiers))
        return false;
    if (next < count) {
        context->setError("Overload not found");
        return false;
    }
    return true;
}

/// A rectangle of the screen as the target means a point of the screen.
void turnRectangleIntoPoint(MouseArguments* mouse) {
    if (!isScreenRectangle(mouse->target))
        return;
    const QRect place = unwrapRemoteScreenRectangleAsQRect(mouse->target);
    const bool hasOffset = (mouse->mask & WithCoordinates) != 0;
    const QPoint point = hasOffset
                             ? boundedPoint(QPointF(place.topLeft()) + QPointF(mouse->x, mouse->y))
                             : place.center();
    mouse->target = {};
    mouse->mask = WithCoordinates;
    mouse->x = point.x();
    mouse->y = point.y();
}

enum class MouseAction { Press, Release, Move };

void mouseAction(ScriptContext* context, const char* function, MouseAction action) {
    const bool buttonChange = action != MouseAction::Move;
    const ActionRecord record(context, function);
    MouseArguments mouse;
    if (!readMouseArguments(context, buttonChange, &mouse))
        return;
    RunnerInterface* const runner = runnerFor(function);
    if (!runner)
        return;
    turnRectangleIntoPoint(&mouse);
    // 4. The runner moves the mouse.
    if (runner->mouseEvent(mouse.target, mouse.mask, mouse.x, mouse.y, mouse.button,
                           mouse.modifiers, buttonChange, action == MouseAction::Press))
        context->setBoolResult(true);
    else
        context->setError(Inspector::self()->lastError());
}

bool keyAction(ScriptContext* context, const char* function, bool press) {
    const ActionRecord record(context, function);
    if (context->argumentCount() != 1) {
        context->setError("One string argument expected");
        return false;
    }
    const SharedPtr<ScriptArgument> key = context->argument(0);
    if (!key->isString()) {
        context->setError(QStringLiteral("Argument '%1' is not a string").arg(key->toString()));
        return false;
    }
    RunnerInterface* const runner = runnerFor(function);
    if (!runner)
        return true;
    if (!runner->keyEvent(key->toString(), press)) {
        context->setError(Inspector::self()->lastError());
        return false;
    }
    context->setBoolResult(true);
    return true;
}

}  // namespace

void mousePress(ScriptContext* context) {
    mouseAction(context, "mousePress", MouseAction::Press);
}

void mouseRelease(ScriptContext* context) {
    mouseAction(context, "mouseRelease", MouseAction::Release);
}

void mouseMove(ScriptContext* context) {
    mouseAction(context, "mouseMove", MouseAction::Move);
}

bool keyPress(ScriptContext* context) {
    return keyAction(context, "keyPress", true);
}

bool keyRelease(ScriptContext* context) {
    return keyAction(context, "keyRelease", false);
}

}  // namespace Tamrix
