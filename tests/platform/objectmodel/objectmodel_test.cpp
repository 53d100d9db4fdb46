#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QColor>
#include <QRect>

#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectname.h"
#include "platform/objectmodel/valueobject.h"
#include "support/failuretext.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::failureText;
using testing::HasSubstr;

TEST(ObjectName, OrdersAndQuotesProperties) {
    ObjectName name;
    EXPECT_EQ(name.qualifiedName(), "{}");
    name.setProperty("type", "QLabel");
    name.setProperty("text", R"(it's a \ {x='1'})");
    EXPECT_EQ(name.qualifiedName(), R"({text='it\'s a \\ {x=\'1\'}' type='QLabel'})");
}

TEST(ObjectName, RealNameStandsUnquoted) {
    const ObjectName name({{"container", PropertyValue("{name='w'}", 0, true)},
                           {"other", PropertyValue(":Symbolic", 0, true)},
                           {"text", PropertyValue("{name='w'}", 0, false)}});
    EXPECT_EQ(name.qualifiedName(),
              R"({container={name='w'} other=':Symbolic' text='{name=\'w\'}'})");
}

TEST(ObjectName, ReadsWhatItWrites) {
    for (const char* const text :
         {R"({text='it\'s a \\ {x=\'1\'}' type='QLabel'})", R"({text*='Sav*' type~='^Q'})",
          R"({text='' window={container={a='1'} type='W'}})", R"({other=':Symbolic'})"})
        EXPECT_EQ(ObjectName(QString(text)).qualifiedName(), text);

    const ObjectName loose(QStringLiteral(" { type = 'A'\ttext ~='\\d\\\\' } "));
    EXPECT_EQ(loose.properties().value("text").text(), R"(\d\)");
    EXPECT_EQ(loose.properties().value("text").modifiers(), PropertyValue::Pattern);
    EXPECT_TRUE(ObjectName(QStringLiteral("{w={a='1'}}")).properties().value("w").isRealName());
}

TEST(ObjectName, MalformedNamesTellWhere) {
    const struct {
        QString name;
        const char* error;
    } rows[] = {
        {"", "expected '{' at character 1"},
        {"{}", "expected a property, such as type='QLabel', at character 2"},
        {"{a='1'", "the name lacks its '}' at character 7"},
        {"{a='1'} x", "unexpected text after the name's '}' at character 9"},
        {"{a}", "expected '=' behind the property 'a' at character 3"},
        {"{a=1}", "expected \"'\" or '{' for the value of 'a' at character 4"},
        {"{a='1}", "the value of 'a' lacks its closing \"'\", it starts at character 4"},
        {"{a='1' a='2'}", "the property 'a' stands twice at character 8"},
        {"{='1'}", "expected a property's name at character 2"},
        {"{a*={b='1'}}", "the property 'a' compares a name as a pattern at character 5"},
        {"{a={b='1'}", "the name lacks its '}' at character 11"},
        {QString("{a=").repeated(20), "names are nested deeper than 16 at character 49"},
    };
    for (const auto& row : rows) {
        QMap<QString, PropertyValue> properties;
        QString error;
        EXPECT_FALSE(parseNameByProperties(row.name, &properties, &error)) << row.error;
        EXPECT_EQ(error, row.error);
        EXPECT_TRUE(properties.isEmpty());
    }
}

TEST(InMemoryModel, FindsObjectsByTheNameThatTheyTell) {
    InMemoryModel model;
    const auto window = model.addObject("Window", "main");
    const auto button = model.addObject("Button", "ok's", window);
    EXPECT_EQ(model.findObject(button->realName()), button);
    EXPECT_EQ(model.findObject("{name='none' type='Button'}"), nullptr);

    EXPECT_EQ(button->parent(), window);
    EXPECT_EQ(window->parent(), nullptr);
    EXPECT_EQ(window->children(), ObjectList{button});
    EXPECT_NE(window->handle(), button->handle());
    EXPECT_FALSE(window->isNull());
    EXPECT_TRUE(Object().isNull());
    EXPECT_TRUE(button->isA(model.objectClass("Button")));
    EXPECT_FALSE(button->isA(model.objectClass("Window")));
    EXPECT_FALSE(button->isA(nullptr));
}

TEST(InMemoryModel, ReadsPropertiesThroughTheClass) {
    InMemoryModel model;
    model.objectClass("Button")->addProperty("text");
    const auto button = model.addObject("Button", "ok");
    const Property* text = button->objectClass()->property(0);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(button->objectClass()->property(1), nullptr);
    EXPECT_EQ(text->get(button), nullptr);
    EXPECT_EQ(text->get(nullptr), nullptr);

    const auto value = model.addObject("String", "OK");
    button->setProperty("text", value);
    EXPECT_EQ(text->get(button), value);
}

class InspectorOnModel : public testing::Test {
protected:
    void SetUp() override {
        Inspector::self()->reset();
        ObjectMap::self()->clear();
        Inspector::self()->setModel(&model);
        model.objectClass("Button")->setSuperClasses({"Widget"});
    }
    void TearDown() override { Inspector::self()->setModel(nullptr); }

    QString lastError() const { return Inspector::self()->lastError(); }

    InMemoryModel model;
};

TEST_F(InspectorOnModel, FindsByPropertiesAndOccurrence) {
    const auto window = model.addObject("Window", "main");
    const auto first = model.addObject("Button", "one", window);
    const auto second = model.addObject("Button", "two", window);
    model.addObject("Button", "three");
    first->setProperty("text", QVariant("Save"));
    second->setProperty("text", QVariant("Save as"));
    second->setProperty("buddy", SharedPtr<Object>(first));
    const struct {
        const char* name;
        SharedPtr<Object> object;
    } rows[] = {
        {"{type='Button' text='Save as'}", second},
        {"{type='Widget' occurrence='2'}", second},
        {"{type*='B*' text~='^S.*s$'}", second},
        {"{type='Button' occurrence='4'}", nullptr},
        {"{window={name='main'} occurrence='2'}", second},
        {"{buddy={name='one'}}", second},
        {"{text*='save*'}", nullptr},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Inspector::self()->findObject(row.name), row.object) << row.name;
    EXPECT_EQ(lastError(), "No object matches {text*='save*'}");
    EXPECT_EQ(Inspector::self()->findObject("{text~='('}"), nullptr);
    EXPECT_THAT(lastError().toStdString(), HasSubstr("'(' is no valid regular expression"));
}

TEST_F(InspectorOnModel, ValuesAreObjects) {
    Inspector* const inspector = Inspector::self();
    EXPECT_EQ(inspector->createObject(true)->objectClass(), inspector->classByTypeNumber(7));
    EXPECT_EQ(inspector->createObject({})->className(), "void");
    EXPECT_TRUE(inspector->createObject({})->isNull());
    EXPECT_EQ(inspector->createObject("a")->toVariant(), "a");
    EXPECT_EQ(inspector->classByName("Nothing"), nullptr);
    EXPECT_EQ(lastError(), "The application knows no class 'Nothing'");

    const QRect rectangle(1, 2, 30, 40);
    const auto onScreen = createRemoteScreenRectangle(rectangle);
    EXPECT_EQ(onScreen->objectClass(), objectModelScreenRectangleClass());
    EXPECT_EQ(unwrapRemoteScreenRectangleAsQRect(onScreen), rectangle);
    EXPECT_EQ(unwrapRemoteScreenRectangleAsQRect(inspector->createObject(rectangle)), rectangle);
    EXPECT_TRUE(unwrapRemoteScreenRectangleAsQRect(nullptr).isNull());
    EXPECT_FALSE(onScreen->toVariant().isValid());
    const PropertyList properties = onScreen->readProperties().value();
    ASSERT_EQ(properties.size(), 4u);
    EXPECT_EQ(properties[3].first, "height");
    EXPECT_EQ(properties[3].second->toVariant(), 40);
    const SharedPtr<Object> colour = inspector->createObject(QColor(1, 2, 3));
    EXPECT_EQ(colour->readProperties().value()[0].second->toVariant(), "#010203");

    inspector->setModel(nullptr);
    EXPECT_EQ(createRemoteScreenRectangle(rectangle), nullptr);
    EXPECT_EQ(inspector->findObject("{a='1'}"), nullptr);
    EXPECT_EQ(lastError(), "No application is connected");
}

TEST_F(InspectorOnModel, KeepsFailuresWithWhatScriptsMakeOfTheirKind) {
    const struct {
        FailureKind kind;
        bool isLookup;
    } rows[] = {
        {FailureKind::NotFound, true}, {FailureKind::NotReady, true}, {FailureKind::Gone, false},
        {FailureKind::Refused, false}, {FailureKind::Failed, false},
    };
    for (const auto& row : rows) {
        model.onCall = [&](const auto&, const QString&, const auto&) {
            return fail(row.kind, "why");
        };
        EXPECT_FALSE(Inspector::self()->take(Method("go", {}).invoke(nullptr, {})));
        EXPECT_EQ(lastError(), "why");
        EXPECT_EQ(Inspector::self()->lastErrorIsLookup(), row.isLookup);
    }
    // A text alone is of no kind.
    Inspector::self()->keep(Failure{FailureKind::NotFound, "not there"});
    Inspector::self()->setLastError("other");
    EXPECT_FALSE(Inspector::self()->lastErrorIsLookup());
}

TEST_F(InspectorOnModel, CallsReachTheModel) {
    model.onCall = [](const SharedPtr<Object>& self, const QString& method,
                      const ObjectList& arguments) -> Outcome<SharedPtr<Object>> {
        if (method == "fail")
            return fail(FailureKind::Failed, "it fails");
        return Inspector::self()->createObject((self ? self->objectName() : "") + method +
                                               argumentValue(arguments.at(0)).toString());
    };
    const auto button = model.addObject("Button", "ok");
    const ObjectList arguments{Inspector::self()->createObject(5)};
    EXPECT_EQ(Method("go", {}).invoke(button, arguments).value()->toVariant(), "okgo5");
    EXPECT_EQ(Method("go", {}).invoke(nullptr, arguments).value()->toVariant(), "go5");
    EXPECT_EQ(button->objectClass()->construct(arguments).value()->toVariant(), "new5");
    EXPECT_EQ(failureText(Method("fail", {}).invoke(button, {})), "it fails");

    EXPECT_TRUE(button->cast(model.objectClass("Widget")) == button);
    EXPECT_EQ(button->cast(model.objectClass("Window")), nullptr);
    EXPECT_EQ(failureText(button->writeProperty(Property("text"), arguments[0])),
              "The object of class 'Button' has no property 'text' that can be set");

    EXPECT_EQ(failureText(requestObjectSnapshot("{name='none'}")),
              "No object matches {name='none'}");
    model.snapshotBytes = "tree";
    EXPECT_EQ(requestObjectSnapshot("{name='ok'}").value_or(""), "tree");
}

TEST(ApplicationContext, ShowsItselfWhateverItsName) {
    ApplicationContext context;
    context.name = "app %2 %3";
    context.pid = 17;
    context.startTime = QDateTime(QDate(2024, 2, 29), QTime(12, 30));
    EXPECT_EQ(context.displayString(), "AUT 'app %2 %3' (pid 17, started 2024-02-29T12:30:00)");
}

TEST(Inspector, ForgetsOnReset) {
    Inspector* inspector = Inspector::self();
    inspector->setLastError("gone");
    inspector->addPropertyDelegate("C", {"a"});
    inspector->addPropertyDelegate("C", {"b"});
    inspector->setRecorderFilter("t", "n");
    EXPECT_EQ(inspector->classSettings("C").propertyDelegates, (QStringList{"a", "b"}));

    inspector->reset();
    EXPECT_EQ(inspector->lastError(), "");
    EXPECT_TRUE(inspector->classSettings("C").propertyDelegates.isEmpty());
    EXPECT_TRUE(inspector->recorderFilters().isEmpty());
}

}  // namespace
}  // namespace Tamrix
