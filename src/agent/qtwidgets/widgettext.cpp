#include "agent/qtwidgets/widgettext.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDockWidget>
#include <QGraphicsView>
#include <QGroupBox>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMetaProperty>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTextDocumentFragment>
#include <QTextEdit>

namespace Tamrix::Agent {

namespace {

/// A hidden password stays hidden, also while it is edited.
QString textOfField(const QLineEdit* field) {
    if (field->echoMode() == QLineEdit::Normal)
        return field->text();
    if (field->echoMode() == QLineEdit::NoEcho)
        return {};
    const int sign = field->style()->styleHint(QStyle::SH_LineEdit_PasswordCharacter, nullptr, field);
    return QString(field->text().size(), QChar(sign));
}

bool hasTextProperty(const QWidget* widget, const char* name) {
    const int index = widget->metaObject()->indexOfProperty(name);
    return index >= 0 && widget->metaObject()->property(index).userType() == QMetaType::QString;
}

TextSource textSourceOf(const QWidget* widget) {
    struct Row {
        bool isOfClass;
        TextSource source;
    };
    const Row rows[] = {
        {qobject_cast<const QAbstractButton*>(widget) != nullptr, TextSource::Button},
        {qobject_cast<const QLabel*>(widget) != nullptr, TextSource::Label},
        {qobject_cast<const QLineEdit*>(widget) != nullptr, TextSource::LineEdit},
        {qobject_cast<const QTextEdit*>(widget) != nullptr, TextSource::TextEdit},
        {qobject_cast<const QPlainTextEdit*>(widget) != nullptr, TextSource::PlainTextEdit},
        {qobject_cast<const QComboBox*>(widget) != nullptr, TextSource::ComboBox},
        {qobject_cast<const QAbstractSpinBox*>(widget) != nullptr, TextSource::SpinBox},
        {qobject_cast<const QGroupBox*>(widget) != nullptr, TextSource::GroupBox},
        {qobject_cast<const QProgressBar*>(widget) != nullptr, TextSource::ProgressBar},
        {qobject_cast<const QMenu*>(widget) != nullptr, TextSource::Menu},
        {qobject_cast<const QStatusBar*>(widget) != nullptr, TextSource::StatusBar},
        {qobject_cast<const QDockWidget*>(widget) != nullptr, TextSource::DockTitle},
        {qobject_cast<const QMdiSubWindow*>(widget) != nullptr, TextSource::WindowTitle},
        // Widgets of other makers.
        {hasTextProperty(widget, "text"), TextSource::TextProperty},
        {hasTextProperty(widget, "title"), TextSource::TitleProperty}};
    for (const Row& row : rows) {
        if (row.isOfClass)
            return row.source;
    }
    return TextSource::None;
}

WidgetFacts makeFacts(const QWidget* widget) {
    WidgetFacts facts;
    facts.textSource = textSourceOf(widget);
    facts.isEditable =
        facts.textSource == TextSource::LineEdit || facts.textSource == TextSource::TextEdit ||
        facts.textSource == TextSource::PlainTextEdit || facts.textSource == TextSource::ComboBox ||
        facts.textSource == TextSource::SpinBox || facts.textSource == TextSource::ProgressBar ||
        facts.textSource == TextSource::StatusBar;
    facts.holdsItems =
        qobject_cast<const QAbstractItemView*>(widget) || qobject_cast<const QComboBox*>(widget) ||
        qobject_cast<const QTabBar*>(widget) || qobject_cast<const QGraphicsView*>(widget);
    const QByteArray type = widget->metaObject()->className();
    facts.isInternal = (type.startsWith('Q') && type.contains("Private")) ||
                       type == "QDesktopWidget" || type == "QAbstractScrollAreaScrollBarContainer";
    return facts;
}

QString labelText(const QLabel* label) {
    const QString text = label->text();
    const bool isRich =
        label->textFormat() == Qt::RichText ||
        (label->textFormat() == Qt::AutoText && text.contains('<') && Qt::mightBeRichText(text));
    if (isRich)
        return QTextDocumentFragment::fromHtml(text).toPlainText();
    // Without a buddy, a label shows its "&".
    return label->buddy() ? withoutMnemonic(text) : text;
}

}  // namespace

const WidgetFacts& factsOf(const QWidget* widget) {
    struct Entry {
        const char* className;
        const QMetaObject* super;
        WidgetFacts facts;
    };
    static QHash<const QMetaObject*, Entry> s_entries;
    const QMetaObject* const metaObject = widget->metaObject();
    auto found = s_entries.find(metaObject);
    // The classes of script languages come and go: one may have the address of another.
    if (found == s_entries.end() || found->className != metaObject->className() ||
        found->super != metaObject->superClass())
        found = s_entries.insert(
            metaObject, {metaObject->className(), metaObject->superClass(), makeFacts(widget)});
    return found->facts;
}

QString textOf(const QWidget* widget) {
    switch (factsOf(widget).textSource) {
        case TextSource::Button:
            return withoutMnemonic(static_cast<const QAbstractButton*>(widget)->text());
        case TextSource::Label:
            return labelText(static_cast<const QLabel*>(widget));
        case TextSource::LineEdit:
            return textOfField(static_cast<const QLineEdit*>(widget));
        case TextSource::TextEdit:
            return static_cast<const QTextEdit*>(widget)->toPlainText();
        case TextSource::PlainTextEdit:
            return static_cast<const QPlainTextEdit*>(widget)->toPlainText();
        case TextSource::ComboBox: {
            const auto* const box = static_cast<const QComboBox*>(widget);
            return box->lineEdit() ? textOfField(box->lineEdit()) : box->currentText();
        }
        case TextSource::SpinBox:
            return static_cast<const QAbstractSpinBox*>(widget)->text();
        case TextSource::GroupBox:
            return withoutMnemonic(static_cast<const QGroupBox*>(widget)->title());
        case TextSource::ProgressBar:
            return static_cast<const QProgressBar*>(widget)->text();
        case TextSource::Menu:
            return withoutMnemonic(static_cast<const QMenu*>(widget)->title());
        case TextSource::StatusBar:
            return static_cast<const QStatusBar*>(widget)->currentMessage();
        case TextSource::WindowTitle:
            return widget->windowTitle();
        case TextSource::DockTitle:
            return withoutMnemonic(widget->windowTitle());
        case TextSource::TextProperty:
            return widget->property("text").toString();
        case TextSource::TitleProperty:
            return widget->property("title").toString();
        case TextSource::None:
            break;
    }
    return widget->isWindow() ? widget->windowTitle() : QString();
}

}  // namespace Tamrix::Agent
