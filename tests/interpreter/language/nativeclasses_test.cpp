#include "interpreter/language/nativeclasses.h"

#include <gtest/gtest.h>

#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

bool useObject(SharedPtr<NativeScriptObject>, ScriptContext*) {
    return true;
}

bool useClass(ScriptContext*) {
    return true;
}

/// Kind, names and parameters of a member, with "=" behind one that can be written.
QString written(const NativeMember& member) {
    return member.function.displayName() + '(' + member.function.parameters().names.join(", ") +
           ')' + (member.isStatic() ? " static" : "") + (member.isProperty() ? " property" : "") +
           (member.setter ? "=" : "");
}

TEST(NativeClasses, HaveTheirMembersAsATable) {
    NativeScriptType type(nullptr, nullptr);
    type.setMethod("scale", useObject, {"factor"}, {"end"}, "Scales");
    type.setStaticMethod("load", useClass, {"file"}, {}, "Loads");
    type.setProperty("width", useObject, nullptr);
    type.setProperty("name", useObject, useObject);
    type.setStaticProperty("limit", useClass, useClass);
    FakeContext context;
    QStringList members;
    for (const NativeMember& member : nativeMembers(context, "Image", type)) {
        members += written(member);
        EXPECT_EQ(member.name, member.function.signature().name);
    }
    EXPECT_EQ(members, QStringList({"Image.scale(factor, end_)", "Image.load(file) static",
                                    "Image.name() property=", "Image.width() property",
                                    "Image.limit() static property="}));
    const NativeFunction constructor = nativeConstructor(context, "Image", type);
    EXPECT_EQ(constructor.displayName(), "Image");
    EXPECT_FALSE(constructor.canConstruct());
}

TEST(NativeClasses, DeriveFromEachOther) {
    char base = 0;
    char middle = 0;
    char derived = 0;
    char other = 0;
    NativeClasses<QString> classes;
    classes.add(&base, nullptr, "Base");
    setNativeSuper(&middle, &base);
    classes.add(&derived, &middle, "Derived");
    ASSERT_TRUE(classes.find(&derived));
    EXPECT_EQ(*classes.find(&derived), "Derived");
    // Nothing was made of it.
    ASSERT_TRUE(classes.find(&middle));
    EXPECT_EQ(*classes.find(&middle), "Base");
    EXPECT_FALSE(classes.find(&other));
    EXPECT_FALSE(classes.find(nullptr));
    EXPECT_TRUE(isNativeTypeDerivedFrom(&derived, &base));
    EXPECT_TRUE(isNativeTypeDerivedFrom(&base, &base));
    EXPECT_FALSE(isNativeTypeDerivedFrom(&base, &derived));
    EXPECT_FALSE(isNativeTypeDerivedFrom(nullptr, nullptr));
}

}  // namespace
}  // namespace Tamrix
