#include "interpreter/language/valuemembers.h"

#include "interpreter/objects/objectstest.h"

namespace Tamrix {
namespace {

using namespace Test;

class ValueMembers : public ObjectsTest {
protected:
    /// The text of what the member gives, or its error.
    QString use(const QString& name, const ScriptArgument::List& arguments) {
        for (const NativeFunction& member : valueMembers(context)) {
            if (member.displayName() != name)
                continue;
            context.setError({});
            context.setArguments(arguments);
            context.result.reset();
            member.run(context, {});
            return context.hasError() ? "error: " + context.errorMessage() : shown(context.result);
        }
        return "no such member";
    }

private:
    static QString shown(const SharedPtr<ScriptArgument>& value) {
        QStringList texts;
        for (const SharedPtr<ScriptArgument>& each : value->toList())
            texts.append(each->toString());
        return value->isList() ? texts.join(' ') : value->toString();
    }
};

TEST_F(ValueMembers, TellOfObjects) {
    const SharedPtr<ScriptArgument> own = object(button);
    EXPECT_EQ(use("Object._text", {own}), "{name='ok' type='Button'}");
    EXPECT_EQ(use("Object._isSame", {own, object(button)}), boolean(true)->toString());
    EXPECT_EQ(use("Object._isSame", {own, text("ok")}), boolean(false)->toString());
    EXPECT_EQ(use("Object._isThere", {own}), boolean(true)->toString());
    EXPECT_TRUE(use("Object._members", {own}).startsWith("text width "));
    EXPECT_EQ(use("Object._property", {own, text("text")}), "OK");
    EXPECT_EQ(use("Object._property", {own, text("resize")}), FakeArgument().toString());
    EXPECT_EQ(use("Object._property", {text("no object"), text("text")}),
              FakeArgument().toString());
    EXPECT_EQ(use("Object._text", {text("ok")}),
              "error: Not called on an object of an application");
}

TEST_F(ValueMembers, TellOfApplicationsAndDataSets) {
    const SharedPtr<TestDataSet> set(new TestDataSet("/suite/users.csv", ',', true));
    EXPECT_EQ(use("DataSet._text", {new FakeArgument(set)}),
              "<data set '/suite/users.csv' with 0 records>");
    EXPECT_EQ(use("ApplicationContext._id", {text("calc")}), "error: Not called on an application");
    EXPECT_EQ(use("Record._values", {text("row")}), "error: Not called on a record");
}

}  // namespace
}  // namespace Tamrix
