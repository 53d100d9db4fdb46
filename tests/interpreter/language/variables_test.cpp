// How variables of any language are listed.

#include <gtest/gtest.h>

#include "interpreter/language/framesdebugger.h"
#include "interpreter/language/languagevariables.h"
#include "interpreter/language/valuetexts.h"
#include "runner/coreapplication.h"
#include "support/fakelanguage.h"
#include "support/inmemorymodel.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Variables of two frames, with lists and maps in them.
class TwoFrames final : public LanguageVariables {
public:
    using LanguageVariables::LanguageVariables;

    ScriptArgument::Map inner;
    ScriptArgument::Map outer;

protected:
    void startListing() override {}
    std::vector<Member> variablesOf(int level) override {
        return asMembers(level == 0 ? inner : outer);
    }
    Members membersOf(const Value& value, int first, int limit) override {
        const std::vector<Member> all = everyMember(value);
        Members members;
        members.count = static_cast<int>(all.size());
        for (int index = first; index < std::min(members.count, first + limit); ++index)
            members.page.push_back(all[static_cast<std::size_t>(index)]);
        return members;
    }
    QString textOf(const Value& value) override { return value->toString(); }

private:
    static std::vector<Member> asMembers(const ScriptArgument::Map& map) {
        std::vector<Member> members;
        for (const auto& [name, value] : map)
            members.push_back({name, value});
        return members;
    }
    static std::vector<Member> everyMember(const Value& value) {
        std::vector<Member> members = asMembers(value->toMap());
        for (const Value& each : value->toList())
            members.push_back({QString::number(members.size()), each});
        return members;
    }
};

class Variables : public testing::Test {
protected:
    Variables() {
        coreApplication();
        debugger.enter("test", 1);
        debugger.enter("module", 2);
    }

    QStringList listing(const QString& path) {
        QStringList texts;
        for (const auto& binding : variables.variableBindings(path))
            texts += binding.name + '=' + binding.value;
        return texts;
    }

    FramesDebugger debugger;
    TwoFrames variables{debugger};
};

TEST_F(Variables, OfAnyFrameAndBelowThem) {
    variables.inner = {{"count", integer(3)}, {"row", map({{"a", list({integer(1)})}})}};
    variables.outer = {{"total", integer(9)}};
    EXPECT_EQ(listing("").size(), 2);
    EXPECT_EQ(listing("").front(), "count=3");
    EXPECT_TRUE(listing("").back().startsWith("+row="));
    EXPECT_EQ(listing("row").size(), 1);
    EXPECT_EQ(listing("+row.a"), QStringList("row.a.0=1"));
    EXPECT_EQ(listing("^1"), QStringList("^1.total=9"));
    EXPECT_FALSE(variables.handlesPath("^2"));
    EXPECT_FALSE(variables.handlesPath("row.b"));
    EXPECT_FALSE(variables.handlesPath("nothing"));
}

TEST_F(Variables, ManyAreListedInPages) {
    ScriptArgument::List numbers;
    for (int index = 0; index < 450; ++index)
        numbers.push_back(integer(index));
    variables.inner = {{"numbers", list(numbers)}};
    const QStringList first = listing("numbers");
    EXPECT_EQ(first.size(), 201);
    EXPECT_EQ(first.back(), "+numbers.@200=250 more");
    const QStringList last = listing("+numbers.@400");
    EXPECT_EQ(last.size(), 50);
    EXPECT_EQ(last.front(), "numbers.400=400");
    EXPECT_EQ(listing("numbers.@450"), QStringList());
}

/// The helpers of texts, which are for derived classes.
struct Texts : ValueTexts {
    using ValueTexts::itemsText;
    using ValueTexts::scriptText;
};

TEST(ValueTexts, WritesNoMoreThanIsShown) {
    int written = 0;
    const auto next = [&] {
        ++written;
        return QStringLiteral("item %1").arg(written);
    };
    EXPECT_EQ(Texts::itemsText(0, 3, next), "item 1, item 2, item 3");
    EXPECT_TRUE(ValueTexts::isCut(Texts::itemsText(0, 1000000, next)));
    EXPECT_LT(written, 60);
    // Deep inside nothing is written.
    written = 0;
    EXPECT_EQ(Texts::itemsText(ValueTexts::deepest, 3, next), "...");
    EXPECT_EQ(written, 0);
    EXPECT_EQ(ValueTexts::cut(QString(500, 'x')), QString(200, 'x') + "...");
}

TEST(ValueTexts, TellWhyThereIsNone) {
    using Written = std::optional<Outcome<QString>>;
    Texts texts;
    const auto expired = [] {};
    EXPECT_EQ(texts.scriptText(expired, [] { return Written("seven"); }), "seven");
    EXPECT_EQ(texts.scriptText(expired,
                               []() -> Written { return fail(FailureKind::Failed, "KeyError"); }),
              "<no representation: KeyError>");
    EXPECT_EQ(texts.scriptText(expired, [] { return Written(); }),
              "<no representation: not in time>");
}

}  // namespace
}  // namespace Tamrix
