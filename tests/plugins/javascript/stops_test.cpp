// Where scripts stop, and what can be seen there: scripts in stops/, what is expected in golden
// files.

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <csignal>

#include "interpreter/bridge/debugger.h"
#include "plugins/javascript/javascripttest.h"
#include "runner/coreapplication.h"
#include "support/golden.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Tells each stop as its line with source and column, and the lines that led there.
class PlaceFrontEnd : public ScriptedFrontEnd {
public:
    void stopped(const ScriptPosition& position, const StopReason&) override {
        QStringList places;
        for (const LineInfo& place : Debugger::self()->callStack())
            places.append(QStringLiteral("%1:%2")
                              .arg(QFileInfo(place.fileName()).fileName())
                              .arg(place.lineNumber()));
        const QStringList lines = QString::fromUtf8(readFile(position.file)).split('\n');
        told += QStringLiteral("%1 at %2\n    %3")
                    .arg(places.join(" < "))
                    .arg(position.column)
                    .arg(lines.value(position.line - 1).trimmed());
    }
};

class JavaScriptStops : public JavaScriptTest {
protected:
    JavaScriptStops() {
        coreApplication();
        auto own = std::make_unique<PlaceFrontEnd>();
        frontEnd = own.get();
        debugger.setFrontEnd(std::move(own));
        define("called",
               [](ScriptContext* context) {
                   QString error;
                   context->argument(0)->call({context->createInteger(1)}, &error);
                   return true;
               },
               {"callback"});
        debugger.setInteractive(true);
    }

    /// The text behind "// WORD: " in a script.
    static QString directive(const QString& text, const QString& word) {
        return QRegularExpression("^// " + word + ": (.*)$", QRegularExpression::MultilineOption)
            .match(text)
            .captured(1);
    }

    /// Loads a script of the folder, with break points where it says so.
    QString load(const QString& name) {
        const QString file = scripts.filePath(name + ".js");
        for (const QString& each : {file, scripts.filePath("library.js")}) {
            const QStringList lines = QString::fromUtf8(readFile(each)).split('\n');
            for (int line = 0; line < lines.size(); ++line) {
                if (lines.at(line).endsWith("  // break"))
                    debugger.bufferBreakPoint(each, line + 1);
            }
        }
        const QString text = QString::fromUtf8(readFile(file));
        EXPECT_TRUE(interpreter->evaluate(text, file)) << qPrintable(interpreter->errorMessage());
        return text;
    }

    /// Runs a script of the folder as its header says and tells its stops.
    QString stopsOf(const QString& name) {
        const QString text = load(name);
        for (const QString& command : directive(text, "Then").split(' ', Qt::SkipEmptyParts))
            frontEnd->commands.push_back(Resume{command == "next"     ? Resume::Next
                                                : command == "return" ? Resume::Return
                                                : command == "step"   ? Resume::Step
                                                                      : Resume::Run});
        const QString mode = directive(text, "Mode");
        if (mode == "step")
            debugger.step();
        else if (mode.startsWith("next"))
            debugger.next(mode.midRef(5).toInt());
        else
            debugger.setDebuggerMode(Debugger::Run);
        EXPECT_EQ(call("main"), "");
        EXPECT_TRUE(frontEnd->commands.empty());
        EXPECT_EQ(debugger.frameDepth(), 0);
        return frontEnd->take("\n") + "\n";
    }

    const QDir scripts{TAMRIX_TEST_SOURCE_DIR "/tests/plugins/javascript/stops"};
    Debugger& debugger = *interpreter->debugger();
    PlaceFrontEnd* frontEnd = nullptr;
};

TEST_F(JavaScriptStops, StepsThroughAllKindsOfCode) {
    EXPECT_TRUE(compareWithGolden("javascript/stops/stepping.txt", stopsOf("stepping")));
}

TEST_F(JavaScriptStops, StepsOverCalls) {
    EXPECT_TRUE(compareWithGolden("javascript/stops/over.txt", stopsOf("over")));
}

TEST_F(JavaScriptStops, BreakPointsInModules) {
    EXPECT_TRUE(compareWithGolden("javascript/stops/breaks.txt", stopsOf("breaks")));
}

TEST_F(JavaScriptStops, Errors) {
    define("findNothing", [](ScriptContext* context) {
        context->setError("Nothing was found", ScriptContext::LookupError);
        return false;
    });
    const QString text = load("errors");
    debugger.setDebuggerMode(Debugger::Run);
    QString stops;
    const QRegularExpression functions("^(?:async )?function (\\w+)",
                                       QRegularExpression::MultilineOption);
    auto function = functions.globalMatch(text);
    while (function.hasNext()) {
        const QString name = function.next().captured(1);
        const QString error = call(name.toUtf8());
        stops += name + ": " + (error.isEmpty() ? QStringLiteral("passes") : error);
        const QString told = frontEnd->take("\n    ");
        stops += told.isEmpty() ? QStringLiteral("\n") : "\n    " + told + "\n";
    }
    EXPECT_TRUE(compareWithGolden("javascript/stops/errors.txt", stops));
}

TEST_F(JavaScriptStops, Variables) {
    load("variables");
    debugger.setDebuggerMode(Debugger::Run);
    QString seen;
    const auto list = [&](const QString& path) {
        seen += "[" + path + "]\n";
        for (const auto& binding : debugger.variables(path))
            seen += "  " + binding.type + "#" + binding.name + "=" + binding.value + "\n";
    };
    const auto evaluate = [&](const QString& code) {
        seen += code + "\n  " + debugger.evaluate(code) + "\n";
    };
    frontEnd->commands.push_back(Look([&](Debugger&) {
        for (const char* const path :
             {"", "^1", "+^1.map", "+^1.map.['key']", "+^1.map.['key'].0", "+^1.table",
              "+^1.table.[1: {a: 1}]", "+^1.table.[3]", "+^1.table.[9]", "+^1.many.@998",
              "+^1.many.1000", "+^1.point", "+^1.self", "+^1.shared", "+^1.shared.b c",
              "+^1.shared.b c.2", "+^1.rest.@1"})
            list(path);
        for (const char* const code :
             {"1 + 1", "^1 text", "^1 text = 'changed'", "^1 point", "^1 nothing", "^9 1",
              "let own = 3", "throw new Error('no')", "^1 breakHere()", "if ("})
            evaluate(code);
    }));
    frontEnd->commands.push_back(Resume::Run);
    EXPECT_EQ(call("main"), "");
    EXPECT_TRUE(compareWithGolden("javascript/variables.txt", seen));
    EXPECT_EQ(results(), QStringList("7 changed: "));
}

/// The first Ctrl-C stops where the script is; the second one ends it.
TEST_F(JavaScriptStops, AtCtrlC) {
    define("interrupt", [](ScriptContext*) {
        std::raise(SIGINT);
        return true;
    });
    ASSERT_EQ(run("function main() {\n"
                  "    let i = 0;\n"
                  "    interrupt();\n"
                  "    while (i < 1000)\n"
                  "        i++;\n"
                  "    return i;\n"
                  "}\n"),
              "");
    debugger.run();
    frontEnd->commands = {Resume::Next, Resume::Return};
    EXPECT_EQ(call("main"), "");
    EXPECT_EQ(frontEnd->told.size(), 2);
    // Nothing has asked for a further run.
    debugger.setDebuggerMode(Debugger::Run);
    EXPECT_EQ(call("main"), "Interrupted");
}

}  // namespace
}  // namespace Tamrix
