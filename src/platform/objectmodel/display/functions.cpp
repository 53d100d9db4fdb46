#include "platform/objectmodel/display/functions.h"

#include <iterator>
#include <string_view>

#include "wire/applicationfunctions.h"
#include "wire/keynames.h"
#include "wire/mousearguments.h"

namespace Tamrix::Display {

namespace {

using Wire::CallArguments;
using Wire::CallError;

const WindowFacts* windowOf(const Spot& spot) {
    return spot.window ? &*spot.window : nullptr;
}

/// Does something at a point of the spot, its middle without an offset, where nothing covers it.
template <typename Do>
Outcome<> atPoint(Session& session, const Spot& spot, const std::optional<QPoint>& offset, Do act) {
    const QPoint point = offset ? spot.bounds.topLeft() + *offset : spot.bounds.center();
    if (const Outcome<> free = session.uncover(windowOf(spot), point); !free)
        return free;
    const Outcome<Input*> input = session.input();
    if (!input)
        return fail(input.error());
    return act(**input, point);
}

/// Does something with the keyboard, once the spot has the keys: a window by being the active one, a
/// part of the screen by a click.
template <typename Do>
Outcome<> withKeys(Session& session, const Spot& spot, Do act) {
    const Outcome<> active =
        spot.window ? session.activate(*spot.window)
                    : atPoint(session, spot, std::nullopt, [](Input& input, const QPoint& point) {
                          return input.click(point, {}, 1);
                      });
    if (!active)
        return active;
    const Outcome<Input*> input = session.input();
    if (!input)
        return fail(input.error());
    return act(**input);
}

Act readClicks(CallArguments& arguments, int count) {
    const std::optional<QPoint> offset = Wire::takeOffset(&arguments);
    const Wire::MouseStyle style = Wire::takeMouseStyle(&arguments);
    return [=](Session& session, const Spot& spot) {
        return atPoint(session, spot, offset, [&](Input& input, const QPoint& point) {
            return input.click(point, style, count);
        });
    };
}

Act readClick(CallArguments& arguments) {
    return readClicks(arguments, 1);
}

Act readDoubleClick(CallArguments& arguments) {
    return readClicks(arguments, 2);
}

Act readDrag(CallArguments& arguments) {
    const QPoint from = arguments.takePoint("x", "y");
    const QPoint way = arguments.takePoint("dx", "dy");
    const Wire::MouseStyle style = Wire::takeMouseStyle(&arguments);
    return [=](Session& session, const Spot& spot) {
        return atPoint(session, spot, from, [&](Input& input, const QPoint& point) {
            return input.drag(point, point + way, style);
        });
    };
}

Act readHover(CallArguments& arguments) {
    const std::optional<QPoint> offset = Wire::takeOffset(&arguments);
    arguments.takeEnd();
    return [=](Session& session, const Spot& spot) {
        return atPoint(session, spot, offset, [](Input& input, const QPoint& point) -> Outcome<> {
            input.approach(point);
            return {};
        });
    };
}

Act readTypeText(CallArguments& arguments) {
    const QString text = arguments.takeText("text");
    arguments.takeEnd();
    return [=](Session& session, const Spot& spot) {
        return withKeys(session, spot, [&](Input& input) { return input.type(text); });
    };
}

Act readPress(CallArguments& arguments) {
    QString error;
    const Wire::KeyCombination keys = Wire::parseKeys(arguments.takeText("keys"), &error);
    arguments.takeEnd();
    if (keys.isEmpty())
        throw CallError(FailureKind::BadArgument, error);
    return [=](Session& session, const Spot& spot) {
        return withKeys(session, spot, [&](Input& input) { return input.pressCombination(keys); });
    };
}

Act readCloseWindow(CallArguments& arguments) {
    arguments.takeEnd();
    return [](Session& session, const Spot& spot) -> Outcome<> {
        if (!spot.window)
            return fail(FailureKind::BadArgument,
                        QStringLiteral("a part of the screen is no window that could be closed"));
        return session.askToClose(*spot.window);
    };
}

/// What runs a function of Wire::applicationFunctions, or why nothing can.
struct Function {
    const char* name;
    Act (*read)(CallArguments& arguments);
    const char* refusal = nullptr;
};

constexpr char noFields[] =
    "what is in its windows is not known; click into the field and use typeText()";
constexpr char noItems[] =
    "what is in its windows is not known; click on the item where findImage() has found it";
constexpr char noClipboard[] = "its clipboard is not known";
constexpr char noFiles[] = "files beside it are written by nobody; use the script's own functions";

constexpr Function functions[] = {
    {"click", readClick},
    {"doubleClick", readDoubleClick},
    {"drag", readDrag},
    {"hover", readHover},
    {"fill", nullptr, noFields},
    {"typeText", readTypeText},
    {"press", readPress},
    {"selectItem", nullptr, noItems},
    {"check", nullptr, noItems},
    {"uncheck", nullptr, noItems},
    {"closeWindow", readCloseWindow},
    {"clipboardText", nullptr, noClipboard},
    {"testDataPut", nullptr, noFiles},
    {"testDataGet", nullptr, noFiles},
    {"testDataExists", nullptr, noFiles},
    {"testDataRemove", nullptr, noFiles},
};

/// Both tables name the same functions in the same order.
constexpr bool areTablesEqual() {
    if (std::size(functions) != std::size(Wire::applicationFunctions))
        return false;
    for (std::size_t index = 0; index < std::size(functions); ++index) {
        if (std::string_view(functions[index].name) != Wire::applicationFunctions[index].name)
            return false;
    }
    return true;
}
static_assert(areTablesEqual());

}  // namespace

Outcome<Act> readCall(const QString& function, const QVariantList& arguments) {
    for (const Function& each : functions) {
        if (function != QLatin1String(each.name))
            continue;
        if (!each.read) {
            return fail(FailureKind::Refused,
                        QStringLiteral("%1 needs an agent in the application: without one, %2")
                            .arg(function, QLatin1String(each.refusal)));
        }
        try {
            CallArguments reader(arguments);
            return each.read(reader);
        } catch (const CallError& error) {
            const auto index = static_cast<std::size_t>(&each - std::begin(functions));
            return fail(Wire::withUsage(error.failure(), function,
                                        Wire::applicationFunctions[index].parameters));
        }
    }
    return fail(FailureKind::Refused, QStringLiteral("there is no global function '%1'").arg(function));
}

}  // namespace Tamrix::Display
