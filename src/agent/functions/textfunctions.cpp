#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QPointer>
#include <algorithm>

#include "agent/core/toolkit.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/keyboard.h"

namespace Tamrix::Agent {

namespace {

void tellTyping(const ElementRef& ref, Typing typing) {
    const Element element = ref.get();
    if (!element.isNull())
        element.toolkit->tellTyping(element, typing);
}

void addTyping(StepQueue* queue, const QString& text) {
    const QVector<uint> characters = QString(text).remove(u'\r').toUcs4();
    for (const uint character : characters)
        queue->add([character] { Keyboard::self().type(character); });
}

/// More characters than that are not typed where an input method may give them: many fields lay a
/// line out anew for each.
constexpr int mostTyped = 1000;

/// What has the keyboard's focus, if it takes the text of input methods; else null.
QObject* inputMethodTarget(Qt::InputMethodHints* hints) {
    QObject* const focus = QGuiApplication::focusObject();
    QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
    if (!focus || !QCoreApplication::sendEvent(focus, &query) ||
        !query.value(Qt::ImEnabled).toBool())
        return nullptr;
    *hints = Qt::InputMethodHints(query.value(Qt::ImHints).toInt());
    return focus;
}

void addPiece(StepQueue* queue, QObject* target, const QString& piece) {
    queue->call([target = QPointer<QObject>(target), piece] {
        QInputMethodEvent event;
        event.setCommitString(piece);
        if (target)
            QCoreApplication::sendEvent(target, &event);
    });
}

/// A long text in pieces, as an input method gives it. Keys are what a field of one line does
/// something with, as Return.
void addText(StepQueue* queue, const QString& text) {
    Qt::InputMethodHints hints;
    QObject* const target = text.size() > mostTyped ? inputMethodTarget(&hints) : nullptr;
    if (!target)
        return addTyping(queue, text);
    const QString shown = QString(text).remove(u'\r');
    const auto isKey = [isMultiLine = hints.testFlag(Qt::ImhMultiLine)](QChar character) {
        return !isMultiLine && character.category() == QChar::Other_Control;
    };
    for (auto begin = shown.cbegin(); begin != shown.cend();) {
        const auto end = std::find_if(begin, shown.cend(), isKey);
        if (end != begin)
            addPiece(queue, target, QString(begin, static_cast<int>(end - begin)));
        begin = std::find_if_not(end, shown.cend(), isKey);
        addTyping(queue, QString(end, static_cast<int>(begin - end)));
    }
}

}  // namespace

void fill(Call& call) {
    const Element element = call.takeObject();
    const QString text = call.takeText("text");
    call.takeEnd();
    const Outcome<Field> field = element.toolkit->field(element);
    if (!field)
        throw CallError(field.error());
    whenReady(call, field->target, Aim::ofTyping(),
              [=, endsWithReturn = field->endsWithReturn](const ElementRef& ref, const QPoint&) {
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
                  // Only now it has the focus.
                  queue->add([queue, text] { addText(queue, text); });
                  if (endsWithReturn)
                      queue->add([keys = parseKeys(QStringLiteral("Return"), &error)] {
                          Keyboard::self().pressCombination(keys);
                      });
                  queue->call([ref] { tellTyping(ref, Typing::Fill); });
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
        queue->add([ref] { tellTyping(ref, Typing::Type); });
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
        queue->add([ref] { tellTyping(ref, Typing::Type); });
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
