// How variables of any language are listed.

#include <gtest/gtest.h>

#include <memory>
#include <utility>

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

/// Lists and maps by what they hold, anything else by its text.
class PlainTexts final : public ValueTexts {
public:
    Parts partsOf(const Value& value, int, int) override {
        std::vector<Part> parts;
        for (const auto& [name, each] : value->toMap())
            parts.push_back({name, each, name + ": "});
        for (const Value& each : value->toList())
            parts.push_back({QString::number(parts.size()), each});
        return partsFrom(std::move(parts));
    }

    /// Of values that were written one by one.
    int written = 0;

    using ValueTexts::keyName;
    using ValueTexts::scriptText;

protected:
    QString text(const Value& value, int depth) override {
        ++written;
        if (value->isList() || value->isMap())
            return '(' + partsText(value, depth) + ')';
        return value->toString();
    }
};

class Variables : public testing::Test {
protected:
    Variables() {
        coreApplication();
        debugger.enter("module", 2);
        debugger.enter("test", 1);
    }

    QStringList listing(const QString& path) {
        QStringList texts;
        for (const auto& binding : variables.variableBindings(path))
            texts += binding.name + '=' + binding.value;
        return texts;
    }

    FramesDebugger debugger;
    ScriptArgument::Map& inner = debugger.variablesOfFiles["test"];
    ScriptArgument::Map& outer = debugger.variablesOfFiles["module"];
    LanguageVariables variables{debugger, std::make_unique<PlainTexts>()};
};

TEST_F(Variables, OfAnyFrameAndBelowThem) {
    inner = {{"count", integer(3)}, {"row", map({{"a", list({integer(1)})}})}};
    outer = {{"total", integer(9)}};
    EXPECT_EQ(listing("").size(), 2);
    EXPECT_EQ(listing("").front(), "count=3");
    EXPECT_TRUE(listing("").back().startsWith("+row="));
    EXPECT_EQ(listing("row").size(), 1);
    EXPECT_EQ(listing("+row.a"), QStringList("row.a.0=1"));
    EXPECT_EQ(listing("^1"), QStringList("^1.total=9"));
    // A step of a feature file is a frame, too, and has none.
    debugger.pushFrameAndSetCurrent(7, 1, debugger.sourceIdOf("a.feature"));
    EXPECT_EQ(listing("^0"), QStringList());
    EXPECT_EQ(listing("^2"), QStringList("^2.total=9"));
    EXPECT_FALSE(variables.handlesPath("^3"));
    EXPECT_FALSE(variables.handlesPath("^1.row.b"));
    EXPECT_FALSE(variables.handlesPath("^1.nothing"));
}

TEST_F(Variables, ManyAreListedInPages) {
    ScriptArgument::List numbers;
    for (int index = 0; index < 450; ++index)
        numbers.push_back(integer(index));
    inner = {{"numbers", list(numbers)}};
    const QStringList first = listing("numbers");
    EXPECT_EQ(first.size(), 201);
    EXPECT_EQ(first.back(), "+numbers.@200=250 more");
    const QStringList last = listing("+numbers.@400");
    EXPECT_EQ(last.size(), 50);
    EXPECT_EQ(last.front(), "numbers.400=400");
    EXPECT_EQ(listing("numbers.@450"), QStringList());
}

TEST(ValueTexts, WriteNoMoreThanIsShown) {
    PlainTexts texts;
    EXPECT_EQ(texts.textOf(map({{"a", integer(1)}, {"b", list({integer(2), integer(3)})}})),
              "(a: 1, b: (2, 3))");
    texts.written = 0;
    EXPECT_TRUE(ValueTexts::isCut(texts.textOf(list(ScriptArgument::List(1000, integer(12345))))));
    EXPECT_LT(texts.written, 60);
    // Deep inside nothing is written.
    SharedPtr<ScriptArgument> nested = integer(1);
    for (int depth = 0; depth <= ValueTexts::deepest; ++depth)
        nested = list({nested});
    EXPECT_EQ(texts.textOf(nested), "(((((...)))))");
    EXPECT_EQ(texts.textOf(list({})), "()");
    EXPECT_EQ(ValueTexts::cut(QString(500, 'x')), QString(200, 'x') + "...");
}

TEST(ValueTexts, NameKeysAsPathsHaveThem) {
    EXPECT_EQ(PlainTexts::keyName("'a  b'", true), "['a \\x20b']");
    EXPECT_EQ(PlainTexts::keyName("'a'", false), "[%27a%27]");
    EXPECT_EQ(PlainTexts::keyName("'cut...", true), "[%27cut%2E%2E%2E]");
    EXPECT_EQ(PlainTexts::keyName("'a[0]'"), "['a%5B0%5D']");
}

TEST(ValueTexts, TellWhyThereIsNone) {
    using Written = std::optional<Outcome<QString>>;
    PlainTexts texts;
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
