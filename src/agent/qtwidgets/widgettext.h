#pragma once

#include <QString>

#include "agent/core/mnemonic.h"

class QWidget;

namespace Tamrix::Agent {

/// What of a widget holds its text.
enum class TextSource : quint8 {
    None,
    Button,
    Label,
    LineEdit,
    TextEdit,
    PlainTextEdit,
    ComboBox,
    SpinBox,
    GroupBox,
    ProgressBar,
    Menu,
    StatusBar,
    WindowTitle,
    DockTitle,
    TextProperty,
    TitleProperty
};

/// What is known of a class of widgets, so that a walk over many asks but once.
struct WidgetFacts {
    TextSource textSource = TextSource::None;
    /// Whether a person types the text.
    bool isEditable = false;
    /// Whether widgets of the class show items.
    bool holdsItems = false;
    /// Whether the class is of the toolkit's inner workings.
    bool isInternal = false;
};

const WidgetFacts& factsOf(const QWidget* widget);

/// What a person reads on the widget; the title of a window that has no text of its own.
QString textOf(const QWidget* widget);

}  // namespace Tamrix::Agent
