#include "interpreter/language/languageargument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <variant>

#include "interpreter/language/valueequality.h"
#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Holds one thing of the library's, or bytes, or a time.
class HoldingArgument final : public LanguageArgument<HoldingArgument> {
public:
    using What = std::variant<std::monostate, SharedPtr<NativeScriptObject>, SharedPtr<HeldRecord>,
                              QByteArray, QDateTime, QString>;
    explicit HoldingArgument(What what = {}) : m_what(std::move(what)) {}

    QString typeName() const override { return "value"; }
    bool isBool() const override { return false; }
    bool isNumber() const override { return false; }
    bool holdsInteger() const override { return false; }
    bool isString() const override { return std::holds_alternative<QString>(m_what); }
    bool isCallable() const override { return false; }
    bool isList() const override { return false; }
    bool isMap() const override { return false; }
    bool isNull() const override { return m_what.index() == 0; }
    bool toBool() const override { return false; }
    double toDouble() const override { return 0; }
    long long convertedToInt() const override { return 0; }
    QString toString() const override { return get<QString>(); }
    List toList() const override { return {}; }
    Map toMap() const override { return {}; }

    template <typename T>
    SharedPtr<T> held() const {
        if constexpr (std::is_same_v<T, NativeScriptObject> || std::is_same_v<T, HeldRecord>)
            return get<SharedPtr<T>>();
        else
            return {};
    }
    std::optional<QByteArray> bytes() const {
        return std::holds_alternative<QByteArray>(m_what) ? std::optional(get<QByteArray>())
                                                          : std::nullopt;
    }
    QDateTime time() const { return get<QDateTime>(); }
    SharedPtr<ScriptArgument> called(const List& arguments) const { return arguments.front(); }
    static LanguageInterpreter* active() { return nullptr; }

private:
    template <typename T>
    T get() const {
        const T* const own = std::get_if<T>(&m_what);
        return own ? *own : T();
    }

    What m_what;
};

struct Native : NativeScriptObject {
    static inline char s_marker = 0;
    static inline char s_base = 0;
    static inline char s_other = 0;
    void* typeId() const override { return &s_marker; }
};

TEST(LanguageArgument, IsWhatItHolds) {
    setNativeSuper(&Native::s_marker, &Native::s_base);
    const HoldingArgument native(SharedPtr<NativeScriptObject>(new Native));
    EXPECT_TRUE(native.isNative(&Native::s_base));
    EXPECT_FALSE(native.isNative(&Native::s_other));
    EXPECT_FALSE(native.isObject());
    EXPECT_FALSE(native.isClass());
    EXPECT_FALSE(native.toTestDataRecord());
    EXPECT_FALSE(native.toVariant());

    const auto* const record = reinterpret_cast<const TestDataRecord*>(&Native::s_marker);
    const HoldingArgument row(SharedPtr<HeldRecord>(new HeldRecord(nullptr, record)));
    EXPECT_EQ(row.toTestDataRecord(), record);
    EXPECT_FALSE(row.isNative(&Native::s_base));
}

TEST(LanguageArgument, GoesToApplicationsAsWhatItIs) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(1'000'000'000'123);
    EXPECT_EQ(HoldingArgument().toVariant(), QVariant());
    EXPECT_EQ(HoldingArgument(QByteArray("\0a", 2)).toVariant(), QVariant(QByteArray("\0a", 2)));
    EXPECT_EQ(HoldingArgument(time).toVariant(), QVariant(time));
    EXPECT_EQ(HoldingArgument(QString("a")).toVariant(), QVariant("a"));
}

TEST(LanguageArgument, IsCalledWithoutAnInterpreter) {
    QString error;
    EXPECT_EQ(HoldingArgument().call({integer(3)}, &error)->toInt(), 3);
}

TEST(WholePart, IsThatOfWhatFits) {
    EXPECT_EQ(wholePart(-2.9), -2);
    EXPECT_EQ(wholePart(-0x1p63), std::numeric_limits<long long>::min());
    for (const double large : {0x1p63, -0x1.0000000000001p63, std::nan(""), HUGE_VAL})
        EXPECT_FALSE(wholePart(large)) << large;
}

TEST(ValueEquality, LooksIntoListsAndMaps) {
    const AreEqual same = [](const auto& left, const auto& right) {
        return left->toInt() == right->toInt();
    };
    EXPECT_TRUE(areEqualLists(*list({integer(1)}), *list({number(1)}), same));
    EXPECT_FALSE(areEqualLists(*list({integer(1)}), *list({integer(2)}), same));
    EXPECT_FALSE(areEqualLists(*list({integer(1)}), *list({}), same));
    EXPECT_FALSE(areEqualLists(*list({}), *map({}), same));
    const auto pair = map({{"a", integer(1)}, {"b", integer(2)}});
    EXPECT_TRUE(areEqualMaps(*pair, *map({{"b", integer(2)}, {"a", integer(1)}}), same));
    EXPECT_FALSE(areEqualMaps(*pair, *map({{"a", integer(1)}, {"c", integer(2)}}), same));
    EXPECT_FALSE(areEqualMaps(*pair, *map({{"a", integer(1)}}), same));
    EXPECT_FALSE(areEqualMaps(*pair, *list({}), same));
}

}  // namespace
}  // namespace Tamrix
