// The waits of a run, for an application that is no program: what stands behind it is nothing to
// them.

#include <gtest/gtest.h>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "runner/coreapplication.h"
#include "runner/services/runner.h"
#include "support/failuretext.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::failureText;

class ObjectWaitsTest : public testing::Test {
protected:
    ObjectWaitsTest() {
        Tamrix::Test::coreApplication();
        auto own = std::make_unique<InMemoryModel>();
        model = own.get();
        model->onCall = [this](const auto&, const QString& method,
                               const ObjectList& arguments) -> Outcome<SharedPtr<Object>> {
            QStringList words{method};
            for (const SharedPtr<Object>& argument : arguments)
                words.append(argument->handle() ? argument->objectName()
                                                : argument->toVariant().toString());
            calls.append(words.join(' '));
            if (method == "fill")
                return fail(FailureKind::Refused, "it has no field");
            return Inspector::self()->createObject("done");
        };
        runner.applications.setCurrent(runner.applications.add(std::move(own), "memory"));
    }
    ~ObjectWaitsTest() override { runner.applications.setCurrent({}); }

    /// What comes of a call by name.
    QString call(const QString& function, const QString& name, int timeout = 20000) {
        const auto outcome =
            runner.callWithName(name, function, {Inspector::self()->createObject("left")}, timeout);
        if (!outcome)
            return "missed: " + outcome.error().text;
        return *outcome ? (**outcome)->toVariant().toString() : "failed: " + failureText(*outcome);
    }

    Runner runner;
    InMemoryModel* model;
    QStringList calls;
};

TEST_F(ObjectWaitsTest, CallsComeWhenTheirObjectIsReady) {
    int looks = 0;
    bool isEnabled = false;
    model->obstacleOf = [&](const Object&) { return isEnabled ? QString() : "it is disabled"; };
    model->onLook = [&] {
        ++looks;
        if (looks == 2)
            model->addObject("Button", "ok");
        isEnabled = looks > 4;
    };
    EXPECT_EQ(call("click", "{name='ok'}"), "done");
    EXPECT_EQ(calls, QStringList("click ok left")) << "once";
    EXPECT_EQ(looks, 5);
    // What is ready takes one look.
    EXPECT_EQ(call("click", "{name='ok'}"), "done");
    EXPECT_EQ(looks, 6);
    EXPECT_EQ(call("fill", "{name='ok'}"), "failed: it has no field");
    EXPECT_EQ(looks, 7);
}

TEST_F(ObjectWaitsTest, TellWhatWasMissed) {
    model->addObject("Button", "ok");
    model->obstacleOf = [](const Object&) { return "it is disabled"; };
    const struct {
        QString name;
        QString text;
    } rows[] = {
        {"{name='ok'}", "Object '{name='ok'}' is not ready after 60 ms: it is disabled"},
        {"{name='none'}",
         "Object '{name='none'}' not found within 60 ms. No object matches {name='none'}"},
        {":none", "The object map has no name ':none'"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(call("click", row.name, 60), "missed: " + row.text);
        EXPECT_FALSE(runner.waitForObjectByName(row.name, true, 60));
        EXPECT_EQ(Inspector::self()->lastError(), row.text);
    }
    EXPECT_TRUE(runner.waitForObjectExists("{name='ok'}", true, 60));
    EXPECT_EQ(calls, QStringList());
    // What an application can't do in the way in which it is connected, it says.
    EXPECT_FALSE(runner.keyEvent("A", true));
    EXPECT_EQ(Inspector::self()->lastError(),
              "The application can't take key events in the way in which it is connected");
    model->close("the line is dead");
    EXPECT_EQ(call("click", "{name='ok'}"), "missed: The application 'memory' has ended");
}

}  // namespace
}  // namespace Tamrix
