#include <QAbstractSpinBox>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/keyboard.h"
#include "agent/qtwidgets/openlist.h"

namespace Tamrix::Agent {

namespace {

struct Field {
    bool isField = false;
    bool isReadOnly = false;
};

template <typename Widget>
bool readField(QObject* object, Field* field) {
    const auto* const widget = qobject_cast<Widget*>(object);
    if (widget == nullptr)
        return false;
    *field = Field{true, widget->isReadOnly()};
    return true;
}

Field fieldOf(QObject* object) {
    Field field;
    if (readField<QLineEdit>(object, &field) || readField<QTextEdit>(object, &field) ||
        readField<QPlainTextEdit>(object, &field) || readField<QAbstractSpinBox>(object, &field))
        return field;
    if (const auto* const box = qobject_cast<QComboBox*>(object))
        return Field{box->isEditable(), box->isEditable() && box->lineEdit()->isReadOnly()};
    if (object->inherits("QQuickTextInput") || object->inherits("QQuickTextEdit"))
        return Field{true, object->property("readOnly").toBool()};
    if (object->inherits("QQuickSpinBox"))
        return Field{true, !object->property("editable").toBool()};
    if (object->inherits("QQuickComboBox"))
        return Field{object->property("editable").toBool(), false};
    return field;
}

/// Boxes of Qt Quick hold the field that takes their text; others are it themselves.
Element innerField(const Element& element) {
    auto* const content = element.object->property("contentItem").value<QObject*>();
    const bool isField = content != nullptr && content->inherits("QQuickTextInput");
    return isField ? Session::self()->element(content) : element;
}

/// What is typed may open a list that is wanted, also in a field that was filled before.
void keepListOf(const ElementRef& ref) {
    if (auto* const widget = qobject_cast<QWidget*>(ref.get().object))
        Agent::keepListOf(focusTaker(widget));
}

void addTyping(StepQueue* queue, const QString& text) {
    const QVector<uint> characters = QString(text).remove(u'\r').toUcs4();
    for (const uint character : characters)
        queue->add([character] { Keyboard::self().type(character); });
}

}  // namespace

void fill(Call& call) {
    const Element element = call.takeObject();
    const QString text = call.takeText("text");
    call.takeEnd();
    const Field field = element.isItem() ? Field() : fieldOf(element.object);
    const QString name = Session::self()->describe(element);
    if (!field.isField)
        throw CallError(FailureKind::Refused,
                        QStringLiteral("%1 is no field that takes text").arg(name));
    if (field.isReadOnly)
        throw CallError(FailureKind::Refused, QStringLiteral("%1 is read only").arg(name));
    // What is typed becomes its value at the end of the line only.
    const bool isSpinBox = !element.isItem() && element.object->inherits("QQuickSpinBox");
    whenReady(call, innerField(element), Aim::ofTyping(),
              [=](const ElementRef& ref, const QPoint&) {
                  auto* const queue = StepQueue::create();
                  addFocus(queue, ref, Qt::OtherFocusReason);
                  addAnswer(queue, call);
                  QString error;
                  queue->add([keys = parseKeys(QStringLiteral("Ctrl+A"), &error)] {
                      Keyboard::self().pressCombination(keys);
                  });
                  if (text.isEmpty())
                      queue->add([keys = parseKeys(QStringLiteral("Delete"), &error)] {
                          Keyboard::self().pressCombination(keys);
                      });
                  addTyping(queue, text);
                  if (isSpinBox)
                      queue->add([keys = parseKeys(QStringLiteral("Return"), &error)] {
                          Keyboard::self().pressCombination(keys);
                      });
                  // A list of completions would take the next click.
                  queue->call([ref] {
                      if (auto* const widget = qobject_cast<QWidget*>(ref.get().object))
                          closeListOf(focusTaker(widget));
                  });
                  run(queue, call);
              });
}

void typeText(Call& call) {
    const Element element = call.takeObject();
    const QString text = call.takeText("text");
    call.takeEnd();
    whenReady(call, element, Aim::ofTyping(), [=](const ElementRef& ref, const QPoint&) {
        auto* const queue = StepQueue::create();
        addFocus(queue, ref, Qt::OtherFocusReason);
        queue->add([ref] { keepListOf(ref); });
        addAnswer(queue, call);
        addTyping(queue, text);
        run(queue, call);
    });
}

void press(Call& call) {
    const Element element = call.takeObject();
    QString error;
    const KeyCombination keys = parseKeys(call.takeText("keys"), &error);
    call.takeEnd();
    if (keys.isEmpty())
        throw CallError(FailureKind::BadArgument, error);
    whenReady(call, element, Aim::withoutPoint(), [=](const ElementRef& ref, const QPoint&) {
        auto* const queue = StepQueue::create();
        addFocus(queue, ref, Qt::OtherFocusReason);
        queue->add([ref] { keepListOf(ref); });
        addAnswer(queue, call);
        queue->add([keys] { Keyboard::self().pressCombination(keys); });
        run(queue, call);
    });
}

void clipboardText(Call& call) {
    call.takeEnd();
    call.responder()->replyBody(Wire::Value{QGuiApplication::clipboard()->text()});
    call.responder()->finish();
}

}  // namespace Tamrix::Agent
