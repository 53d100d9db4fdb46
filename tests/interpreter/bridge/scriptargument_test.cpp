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

/// A map, or a list, that holds `value` in so many levels.
SharedPtr<ScriptArgument> nested(int levels, bool asMap, SharedPtr<ScriptArgument> value) {
    for (int level = 0; level < levels; ++level)
        value = asMap ? map({{"container", value}}) : list({value});
    return value;
}

TEST(ScriptArgument, DepthHasALimit) {
    EXPECT_EQ(nested(16, true, text("x"))->toRealName(),
              QString("{container=").repeated(16) + "'x'" + QString("}").repeated(16));
    EXPECT_THROW(nested(17, true, text("x"))->toRealName(), NestingError);
    EXPECT_THROW(serializeObjectName(nested(17, true, text("x"))), NestingError);
    for (const bool asMap : {false, true}) {
        EXPECT_TRUE(nested(16, asMap, text("x"))->toVariant());
        EXPECT_THROW(nested(17, asMap, text("x"))->toVariant(), NestingError);
    }
    // A refused value leaves nothing behind.
    EXPECT_TRUE(nested(16, true, text("x"))->toVariant());

    // Few objects, but without end when each place is visited.
    SharedPtr<ScriptArgument> wide = text("x");
    for (int level = 0; level < 16; ++level)
        wide = map({{"a", wide}, {"b", wide}, {"c", wide}});
    EXPECT_THROW(wide->toRealName(), NestingError);
}

TEST(ScriptArgument, BecomesPropertyValue) {
    struct {
        SharedPtr<ScriptArgument> value;
        QString text;
        bool realName;
    } const rows[] = {
        {text("{a='b'}"), "{a='b'}", false},  // a string stands as it is
        {number(1.5), "1.5", false},         {map({{"a", text("b")}}), "{a='b'}", true},
        {boolean(false), "false", false},    {new FakeArgument, "null", false},
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
