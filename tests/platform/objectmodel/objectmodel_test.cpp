#include <gtest/gtest.h>

#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/inmemorymodel.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectname.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

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
