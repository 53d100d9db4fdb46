#include "interpreter/bridge/scriptargument.h"

#include <gtest/gtest.h>

#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST(ScriptArgument, NamesObjects) {
    const auto name = map({{"type", text("Button")},
                           {"row", integer(3)},
                           {"visible", boolean(true)},
                           {"window", map({{"name", text("It's \\ main")}})}});
    EXPECT_EQ(name->toRealName(),
              "{row='3' type='Button' visible='true' window={name='It\\'s \\\\ main'}}");
    EXPECT_EQ(map({})->toRealName(), "{}");
    EXPECT_EQ(text(":Main")->toRealName(), ":Main");

    EXPECT_EQ(serializeObjectName(nullptr), "");
    EXPECT_EQ(serializeObjectName(name), name->toRealName());
    // A map that is a string as well counts as the string.
    SharedPtr<FakeArgument> both = staticPointerCast<FakeArgument>(name);
    both->alsoText = "as text";
    EXPECT_EQ(serializeObjectName(name), "as text");

    EXPECT_TRUE(isStringOrObjectName(name));
    EXPECT_TRUE(isStringOrObjectName(text("")));
    EXPECT_FALSE(isStringOrObjectName(integer(1)));
    EXPECT_FALSE(isStringOrObjectName(nullptr));
}

TEST(ScriptArgument, BecomesPropertyValue) {
    struct {
        SharedPtr<ScriptArgument> value;
        QString text;
        bool realName;
    } const rows[] = {
        {text("{a='b'}"), "{a='b'}", false},  // a string stands as it is
        {number(1.5), "1.5", false},         {map({{"a", text("b")}}), "{a='b'}", true},
        {boolean(false), "false", false},    {new FakeArgument, "", false},
    };
    for (const auto& row : rows) {
        const PropertyValue value = row.value->toPropertyValue();
        EXPECT_EQ(value.text(), row.text);
        EXPECT_EQ(value.isRealName(), row.realName) << row.text.toStdString();
        EXPECT_EQ(value.modifiers(), 0);
    }
}

TEST(ScriptArgument, IdentifiesCallables) {
    const auto function = callable([](const auto&, auto*) { return integer(1); });
    const QString identifier = function->callableIdentifier();
    EXPECT_TRUE(identifier.startsWith("Callable|0x"));
    EXPECT_EQ(identifier.mid(11).toULongLong(nullptr, 16),
              reinterpret_cast<quintptr>(function.get()));
    EXPECT_EQ(identifier, identifier.left(9) + identifier.mid(9).toLower());
}

}  // namespace
}  // namespace Tamrix
