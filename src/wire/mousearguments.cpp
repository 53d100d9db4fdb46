#include "wire/mousearguments.h"

#include "wire/applicationfunctions.h"
#include "wire/keynames.h"

namespace Tamrix::Wire {

namespace {

/// Qt::NoButton for what names none.
Qt::MouseButton buttonOf(const QString& name) {
    for (const MouseButtonName& entry : mouseButtonNames) {
        if (name.compare(QLatin1String(entry.name), Qt::CaseInsensitive) == 0)
            return static_cast<Qt::MouseButton>(entry.number);
    }
    return Qt::NoButton;
}

}  // namespace

bool isMouseButton(int number) {
    const bool isOne = number > 0 && (number & (number - 1)) == 0;
    return isOne && (number & static_cast<int>(Qt::AllButtons)) != 0;
}

QString noMouseButtonText(int number) {
    return QStringLiteral("%1 is no mouse button: 1 is left, 2 right, 4 middle").arg(number);
}

std::optional<QPoint> takeOffset(CallArguments* arguments) {
    if (!arguments->hasNumber() || !arguments->hasNumber(1))
        return std::nullopt;
    return arguments->takePoint("x", "y");
}

MouseStyle takeMouseStyle(CallArguments* arguments) {
    MouseStyle style;
    QString modifiers;
    bool mayBeButton = false;
    if (arguments->hasNumber()) {
        const int number = arguments->takeNumber("button");
        style.button = static_cast<Qt::MouseButton>(number);
        if (!isMouseButton(number))
            throw CallError(FailureKind::BadArgument, noMouseButtonText(number));
    } else if (arguments->hasText()) {
        const QString text = arguments->takeText("button");
        const Qt::MouseButton button = buttonOf(text);
        if (button != Qt::NoButton) {
            style.button = button;
        } else if (arguments->isAtEnd()) {
            modifiers = text;
            mayBeButton = !text.contains(QLatin1Char('+'));
        } else {
            throw CallError(FailureKind::BadArgument,
                            QStringLiteral("'%1' is no mouse button: \"left\", \"right\" or "
                                           "\"middle\"")
                                .arg(text));
        }
    }
    if (arguments->hasNumber())
        style.modifiers = Qt::KeyboardModifiers(arguments->takeNumber("modifiers"));
    else if (!arguments->isAtEnd())
        modifiers = arguments->takeText("modifiers");
    arguments->takeEnd();
    QString error;
    Qt::KeyboardModifiers named;
    if (!parseModifiers(modifiers, &named, &error)) {
        if (mayBeButton)
            error = QStringLiteral("'%1' is neither a mouse button nor a modifier").arg(modifiers);
        throw CallError(FailureKind::BadArgument, error);
    }
    style.modifiers |= named;
    return style;
}

}  // namespace Tamrix::Wire
