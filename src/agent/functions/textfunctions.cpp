#include <QClipboard>
#include <QGuiApplication>

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
                  addTyping(queue, text);
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
