// Where scripts stop, and with which stack: scripts in stops/, what is expected in golden files.

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <functional>

#include "interpreter/bridge/debugger.h"
#include "plugins/python/pythontest.h"
#include "support/golden.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Tells each stop as its line with source and column, and the lines that led there.
class StackFrontEnd : public ScriptedFrontEnd {
public:
    static StackFrontEnd& install(Debugger& debugger) {
        auto frontEnd = std::make_unique<StackFrontEnd>();
        StackFrontEnd& installed = *frontEnd;
        debugger.setFrontEnd(std::move(frontEnd));
        return installed;
    }

    void stopped(const ScriptPosition& position, const StopReason&) override {
        const std::vector<LineInfo> stack = Debugger::self()->callStack();
        QString text = QStringLiteral("%1:%2").arg(place(stack.front())).arg(position.column);
        constexpr std::size_t shown = 6;
        for (std::size_t index = 1; index < std::min(stack.size(), shown); ++index)
            text += " < " + place(stack[index]);
        if (stack.size() > shown)
            text += QStringLiteral(" < ... of %1").arg(stack.size());
        told += text + "\n        " + lines(position.file).value(position.line - 1).trimmed();
        if (onStop)
            onStop();
    }

    static QStringList lines(const QString& file) {
        return QString::fromUtf8(readFile(file)).split('\n');
    }

    std::function<void()> onStop;

private:
    static QString place(const LineInfo& position) {
        return QStringLiteral("%1:%2")
            .arg(QFileInfo(position.fileName()).fileName())
            .arg(position.lineNumber());
    }
};

class PythonStops : public PythonTest {
protected:
    PythonStops() {
        interpreter->addToSearchPath(QFileInfo(scripts.path()));
        define("called",
               [](ScriptContext* context) {
                   QString error;
                   context->argument(0)->call({context->createInteger(1)}, &error);
                   if (!error.isEmpty())
                       context->setError("The callback failed: " + error);
                   return !context->hasError();
               },
               {"callback"});
        debugger.setInteractive(true);
    }

    /// The text behind "# WORD: " in a script.
    static QString directive(const QString& text, const QString& word) {
        return QRegularExpression("^# " + word + ": (.*)$", QRegularExpression::MultilineOption)
            .match(text)
            .captured(1);
    }

    void setMode(const QString& mode) {
        if (mode.startsWith("step"))
            debugger.step();
        else if (mode.startsWith("next"))
            debugger.next(mode.midRef(5).toInt());
        else
            debugger.setDebuggerMode(Debugger::Run);
    }

    /// Runs a script of the folder as its header says and tells its stops.
    QString stopsOf(const QString& name) {
        const QString file = scripts.filePath(name + ".py");
        const QString text = readFile(file);
        for (const QString& each : {name + ".py", QStringLiteral("library.py")}) {
            const QStringList lines = StackFrontEnd::lines(scripts.filePath(each));
            for (int line = 0; line < lines.size(); ++line) {
                if (lines.at(line).endsWith("  # break"))
                    debugger.bufferBreakPoint(each == name + ".py" ? file : each, line + 1);
            }
        }
        for (const QString& command : directive(text, "Then").split(' ', Qt::SkipEmptyParts))
            frontEnd.commands.push_back(Resume{command == "next"     ? Resume::Next
                                               : command == "return" ? Resume::Return
                                               : command == "step"   ? Resume::Step
                                                                     : Resume::Run});
        const QString mode = directive(text, "Mode");
        if (mode.endsWith("loading"))
            setMode(mode);
        EXPECT_TRUE(interpreter->evaluate(text, file)) << qPrintable(interpreter->errorMessage());
        if (!mode.endsWith("loading"))
            setMode(mode);
        EXPECT_TRUE(interpreter->callFunction("main", ObjectList()))
            << qPrintable(interpreter->errorMessage());
        EXPECT_TRUE(frontEnd.commands.empty());
        EXPECT_EQ(debugger.frameDepth(), 0);
        return frontEnd.take("\n") + "\n";
    }

    const QDir scripts{TAMRIX_TEST_SOURCE_DIR "/tests/plugins/python/stops"};
    Debugger& debugger = *interpreter->debugger();
    StackFrontEnd& frontEnd = StackFrontEnd::install(debugger);
};

TEST_F(PythonStops, Callbacks) {
    EXPECT_TRUE(compareWithGolden("python/stops/callbacks.txt", stopsOf("callbacks")));
}

TEST_F(PythonStops, Coroutines) {
    EXPECT_TRUE(compareWithGolden("python/stops/coroutines.txt", stopsOf("coroutines")));
}

TEST_F(PythonStops, Exceptions) {
    EXPECT_TRUE(compareWithGolden("python/stops/exceptions.txt", stopsOf("exceptions")));
}

TEST_F(PythonStops, StepsOverExceptions) {
    EXPECT_TRUE(compareWithGolden("python/stops/exceptions_over.txt", stopsOf("exceptions_over")));
}

TEST_F(PythonStops, Generators) {
    EXPECT_TRUE(compareWithGolden("python/stops/generators.txt", stopsOf("generators")));
}

TEST_F(PythonStops, ModulesThatAreImportedLater) {
    EXPECT_TRUE(compareWithGolden("python/stops/importing.txt", stopsOf("importing")));
}

TEST_F(PythonStops, LinesOfTheScriptItself) {
    EXPECT_TRUE(compareWithGolden("python/stops/loading.txt", stopsOf("loading")));
}

TEST_F(PythonStops, Recursion) {
    EXPECT_TRUE(compareWithGolden("python/stops/recursion.txt", stopsOf("recursion")));
}

TEST_F(PythonStops, Returns) {
    EXPECT_TRUE(compareWithGolden("python/stops/returning.txt", stopsOf("returning")));
}

TEST_F(PythonStops, FilesThatAreSourced) {
    EXPECT_TRUE(compareWithGolden("python/stops/sourcing.txt", stopsOf("sourcing")));
}

TEST_F(PythonStops, Errors) {
    define("findNothing", [](ScriptContext* context) {
        context->setError("Nothing was found", ScriptContext::LookupError);
        return false;
    });
    ASSERT_TRUE(writeFile(folder.filePath("broken.py"), "broken = True\n{}[broken]\n"));
    const QString file = scripts.filePath("errors.py");
    const QString text = readFile(file);
    ASSERT_TRUE(interpreter->evaluate(text, file)) << qPrintable(interpreter->errorMessage());
    ASSERT_TRUE(interpreter->evaluate(
        QStringLiteral("brokenFile = '%1'").arg(folder.filePath("broken.py")), QString()));
    debugger.setDebuggerMode(Debugger::Run);
    frontEnd.onStop = [this] {
        debugger.setDebuggerMode(Debugger::None);
        interpreter->evaluate("cleaned", QString());
        debugger.setDebuggerMode(Debugger::Run);
        frontEnd.told += "        cleaned: " + interpreter->resultMessage();
    };
    QString stops;
    const QRegularExpression functions("^def (\\w+)", QRegularExpression::MultilineOption);
    auto function = functions.globalMatch(text);
    while (function.hasNext()) {
        const QString name = function.next().captured(1);
        interpreter->evaluate("cleaned.clear()", QString());
        const bool passed = interpreter->callFunction(name, ObjectList());
        stops += name + ": " + (passed ? QStringLiteral("passes") : interpreter->errorMessage());
        const QString told = frontEnd.take("\n    ");
        stops += told.isEmpty() ? QStringLiteral("\n") : "\n    " + told + "\n";
    }
    EXPECT_TRUE(compareWithGolden("python/stops/errors.txt",
                                  Normaliser().path(folder.path(), "<FOLDER>")(stops)));
}

/// The first Ctrl-C stops at the next line, whatever the script is doing; the second one ends it.
TEST_F(PythonStops, AtCtrlC) {
    const QString file = scripts.filePath("interrupted.py");
    ASSERT_TRUE(interpreter->evaluate(readFile(file), file))
        << qPrintable(interpreter->errorMessage());
    debugger.run();
    frontEnd.commands = {Resume::Next, Resume::Next, Resume::Return};
    EXPECT_TRUE(interpreter->callFunction("main", ObjectList()))
        << qPrintable(interpreter->errorMessage());
    EXPECT_TRUE(compareWithGolden("python/stops/interrupted.txt", frontEnd.take("\n") + "\n"));
    // Nothing has asked for a further run.
    debugger.setDebuggerMode(Debugger::Run);
    EXPECT_FALSE(interpreter->callFunction("main", ObjectList()));
    EXPECT_EQ(interpreter->errorMessage(), "KeyboardInterrupt");
    EXPECT_EQ(frontEnd.take(), "");
}

/// A recursion that Python would endure does not end the process because a debugger looks on.
TEST_F(PythonStops, DeepRecursion) {
    ASSERT_EQ(run("import sys\n"
                  "sys.setrecursionlimit(100000)\n"
                  "def sink(depth):\n"
                  "    return 0 if depth == 0 else sink(depth - 1) + 1\n"
                  "def main():\n"
                  "    if sink(60000) != 60000: raise ValueError()\n"
                  "    sink(2)\n"),
              "");
    debugger.bufferBreakPoint(script(), 7);
    debugger.setDebuggerMode(Debugger::Run);
    const int id = debugger.findSourceId("test.py");
    debugger.setBreakPoint(7, id, true);
    EXPECT_TRUE(interpreter->callFunction("main", ObjectList()))
        << qPrintable(interpreter->errorMessage());
    EXPECT_EQ(frontEnd.told.size(), 1);
}

}  // namespace
}  // namespace Tamrix
