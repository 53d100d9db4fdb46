// Each function against each state in which it can find its object.

#include <gtest/gtest.h>

#include "agent/input/inputprogram.h"
#include "support/golden.h"
#include "support/qtversions.h"

namespace Tamrix {
namespace {

struct FunctionCall {
    const char* function;
    const char* object;
    QVariantList arguments;
};

const FunctionCall calls[] = {
    {"click", "button", {}},
    {"doubleClick", "button", {}},
    {"drag", "button", {20, 10, 15, 5}},
    {"hover", "spot", {}},
    {"fill", "field", {"n"}},
    {"typeText", "field", {"n"}},
    {"press", "field", {"n"}},
    {"check", "box", {}},
    {"uncheck", "ticked", {}},
    {"selectItem", "list", {"Two"}},
    {"selectItem", "combo", {"Two"}},
    {"selectItem", "bar", {"Menu.Two"}},
    {"closeWindow", "stage", {}},
};

struct State {
    /// What the target knows, but for the first: the object is as usable as can be.
    const char* name;
    /// Of the call, in ms: long where something else has to happen in time.
    int timeout;
};

const State states[] = {{"usable", 5000},  {"gone", 200},    {"vanishing", 1000}, {"hidden", 200},
                        {"disabled", 200}, {"covered", 200}, {"blocked", 200},    {"moving", 200},
                        {"behind", 5000},  {"overlaid", 200}};

struct Toolkit {
    const char* name;
    int qtVersion;
    QString program;
    QStringList arguments;
    /// The property of the main window that takes a state.
    const char* state;
};

class StatesTest : public testing::TestWithParam<Toolkit> {};

TEST_P(StatesTest, EachFunctionTellsWhatIsInItsWay) {
    InputProgram program(GetParam().program, "offscreen", QString(), GetParam().arguments);
    ASSERT_NE(program.object("main").handle, 0U) << program.client().lastError().toStdString();
    QString table;
    for (const FunctionCall& call : calls) {
        const QString name = QString::fromLatin1(call.object);
        table += QStringLiteral("%1 %2\n").arg(QLatin1String(call.function), name);
        for (const State& state : states) {
            program.write("main", GetParam().state, QString());
            program.sync();
            const Wire::ObjectInfo object = program.object(name);
            ASSERT_NE(object.handle, 0U) << call.object;
            program.write("main", GetParam().state,
                          QStringLiteral("%1 %2").arg(QLatin1String(state.name), name));
            // What goes during the call is not waited for.
            if (qstrcmp(state.name, "vanishing") != 0)
                program.sync();
            const QString error =
                program.call(call.function, object, call.arguments, state.timeout);
            const QString done = program.read("main", "log").toString();
            // It does its work, or it says why and does nothing.
            EXPECT_NE(error.isEmpty(), done.isEmpty())
                << call.function << ' ' << state.name << ": " << error.toStdString() << " / "
                << done.toStdString();
            table +=
                QStringLiteral("    %1 %2\n")
                    .arg(QStringLiteral("%1:").arg(QLatin1String(state.name)).leftJustified(10),
                         error.isEmpty() ? done + " by it" : error);
        }
    }
    // Where the middle of a mark or an item lies hangs on style and font.
    const Tamrix::Test::Normaliser points =
        Tamrix::Test::Normaliser().pattern("the point \\(\\d+, \\d+\\)", "the point (x, y)");
    EXPECT_TRUE(Tamrix::Test::compareWithGolden(
        QStringLiteral("agent/%1states.txt").arg(QLatin1String(GetParam().name)), points(table)));
}

std::vector<Toolkit> toolkits() {
    std::vector<Toolkit> list;
    for (const int version : qtVersions()) {
        list.push_back({"widget", version, forQt("states_target", version), {}, "state"});
        list.push_back({"quick",
                        version,
                        sceneViewer(version),
                        {TAMRIX_TEST_SOURCE_DIR "/tests/agent/input/scenes/states.qml"},
                        "wanted"});
    }
    return list;
}

INSTANTIATE_TEST_SUITE_P(, StatesTest, testing::ValuesIn(toolkits()), [](const auto& test) {
    return test.param.name + qtName(test.param.qtVersion);
});

}  // namespace
}  // namespace Tamrix
