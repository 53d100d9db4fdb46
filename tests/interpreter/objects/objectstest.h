#pragma once

#include <gtest/gtest.h>

#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/testresult/testresult.h"
#include "support/fakeobjects.h"
#include "support/fakerunner.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix::Test {

/// A script of the fake language and an application in memory with a button, whose calls are noted.
class ObjectsTest : public testing::Test {
protected:
    ObjectsTest() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("end", "QString", true);
        buttonClass->addProperty("unreadable", "QString", true);
        buttonClass->addProperty("both");
        buttonClass->addMethod("both", Signature());
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("QString")}));
        button = model.addObject("Button", "ok");
        button->setProperty("text", QVariant("OK"));
        button->setProperty("width", QVariant(7));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        button->setProperty("end", QVariant("right"));
        button->setProperty("both", QVariant(true));
        button->setProperty("ofItsOwn", QVariant(3));
        model.onCall = [this](const auto& self, const QString& method,
                              const ObjectList& arguments) {
            return answer(self, method, arguments);
        };
        Inspector::self()->setModel(&model);
        runner.hasObjectModel = true;
        runner.found = button;
    }
    ~ObjectsTest() override {
        // Whatever a test did, the application's model is given back as often as it was taken.
        EXPECT_EQ(runner.acquired, runner.released);
        Inspector::self()->setModel(nullptr);
        Inspector::self()->setLastError(QString());
        Interpreter::setSelf(nullptr);
    }

    /// Notes the call; the result is what `nextResult` says, null with a text for a failure.
    Outcome<SharedPtr<Object>> answer(const SharedPtr<Object>& self, const QString& method,
                                      const ObjectList& arguments) {
        QStringList words{self ? self->objectName() : "-", method};
        for (const SharedPtr<Object>& argument : arguments)
            words.append(argument->handle()
                             ? argument->objectName()
                             : QString("%1:%2").arg(argument->className(),
                                                    argument->toVariant().toString()));
        seen.append(words.join(' '));
        if (failure.isEmpty())
            return Inspector::self()->createObject(nextResult);
        return fail(isLookup ? FailureKind::NotReady : FailureKind::Failed, failure);
    }

    QString takeSeen() {
        const QString calls = seen.join('\n');
        seen.clear();
        return calls;
    }

    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Tcl};
    RecordingReport report;
    TestResult result{&report};
    FakeContext context{&result};
    QStringList seen;
    QVariant nextResult = "done";
    QString failure;
    bool isLookup = false;
};

}  // namespace Tamrix::Test
