#include <gmock/gmock.h>

#include "plugins/python/pythontest.h"

namespace Tamrix {
namespace {

using namespace Test;
using testing::HasSubstr;

class PythonErrors : public PythonTest {
protected:
    /// Lines of the last error's stack, innermost first.
    std::vector<int> lines() const {
        std::vector<int> found;
        for (const LineInfo& position : interpreter->errorCallStack())
            found.push_back(position.lineNumber());
        return found;
    }
    bool call(const char* name) { return interpreter->callFunction(name, ObjectList()); }
};

TEST_F(PythonErrors, StackOfScriptLines) {
    ASSERT_EQ(run("def inner():\n"
                  "    raise ValueError('bad')\n"
                  "def main():\n"
                  "    inner()\n"
                  "def library():\n"
                  "    import json\n"
                  "    json.loads('{')\n"
                  "def chained():\n"
                  "    try:\n"
                  "        inner()\n"
                  "    except ValueError as error:\n"
                  "        raise KeyError('k') from error\n"
                  "def endless():\n"
                  "    endless()\n"),
              "");
    EXPECT_FALSE(call("main"));
    EXPECT_EQ(interpreter->errorMessage(), "ValueError: bad");
    EXPECT_EQ(lines(), (std::vector{2, 4}));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_EQ(interpreter->errorFile({}),
              QFileInfo(folder.path()).canonicalFilePath() + "/test.py");

    // An error inside Python's library stands at the script line that called it.
    EXPECT_FALSE(call("library"));
    EXPECT_EQ(lines(), std::vector{7});

    EXPECT_FALSE(call("chained"));
    EXPECT_EQ(interpreter->errorMessage(), "KeyError: 'k'\ncaused by ValueError: bad");

    EXPECT_FALSE(call("endless"));
    EXPECT_EQ(interpreter->errorMessage(), "RecursionError: maximum recursion depth exceeded");
    EXPECT_EQ(lines().size(), 100u);

    EXPECT_EQ(run("pass"), "");
    EXPECT_EQ(interpreter->errorLine(), -1);
    EXPECT_TRUE(interpreter->errorCallStack().empty());
    EXPECT_FALSE(call("nothing"));
}

TEST_F(PythonErrors, Syntax) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"x = 1\nif x\n", 2, "SyntaxError: expected ':'"},
        {"x = (\n", 1, "SyntaxError: '(' was never closed"},
        {"def f():\nreturn 1\n", 2, "IndentationError: expected an indented block"},
        {"\tx = 1\n        y = 2\n", 1, "IndentationError: unexpected indent"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter->checkSyntax(row.text, script()));
        EXPECT_EQ(interpreter->errorLine(), row.line) << row.text;
        EXPECT_THAT(interpreter->errorMessage().toStdString(), testing::StartsWith(row.message));
    }
    EXPECT_FALSE(interpreter->checkSyntax(QString("x = 1\ny = ") + QChar(0), script()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_THAT(interpreter->errorMessage().toStdString(), HasSubstr("line 2 holds a NUL"));

    // The text is decoded already, whatever its coding line says.
    EXPECT_TRUE(
        interpreter->checkSyntax(QString::fromUtf8("# coding: ascii\nx = '\xc3\xa4'\n"), script()));

    // A module with a syntax error is named with its line, below the import.
    ASSERT_TRUE(writeFile(folder.filePath("broken.py"), "\n\nx = = 1\n"));
    interpreter->addToSearchPath(QFileInfo(folder.path()));
    EXPECT_THAT(run("\nimport broken").toStdString(), HasSubstr("SyntaxError"));
    EXPECT_EQ(lines(), (std::vector{3, 2}));
}

TEST_F(PythonErrors, CodeWithoutAFileHasALine) {
    EXPECT_FALSE(interpreter->evaluate("x = 1\ny = nothing\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_FALSE(interpreter->evaluate("x = (\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 1);
    // Its own line counts, wherever the error arose; the message tells where.
    EXPECT_FALSE(interpreter->evaluate("import json\n\njson.loads('{')\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 3);
    EXPECT_EQ(interpreter->errorFile("none"), "none");
    EXPECT_THAT(interpreter->errorMessage().toStdString(), HasSubstr("/json/"));
    EXPECT_FALSE(interpreter->evaluate(QString("x = 1\ny = ") + QChar(0), QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
}

TEST_F(PythonErrors, ExitEndsTheCase) {
    ASSERT_EQ(run("import sys\n"
                  "def init():\n"
                  "    sys.exit()\n"
                  "def main():\n"
                  "    test.fail('not reached')\n"
                  "def cleanup():\n"
                  "    test.log('cleaned')\n"
                  "def failing():\n"
                  "    sys.exit('went wrong')\n"),
              "");
    EXPECT_FALSE(call("failing"));
    EXPECT_EQ(interpreter->errorMessage(), "SystemExit: went wrong");
    EXPECT_TRUE(call("init"));
    EXPECT_TRUE(call("main"));
    EXPECT_TRUE(call("cleanup"));
    EXPECT_EQ(results(), QStringList("7 cleaned: "));
}

TEST_F(PythonErrors, TheNextScriptStartsAfresh) {
    ASSERT_TRUE(interpreter->evaluate("shared = 1\n", QString()));  // an init script
    interpreter->setScriptArguments(script(), {});
    ASSERT_EQ(run("import sys\n"
                  "def main(): sys.exit(0)\n"
                  "def cleanup(): test.fail('of another script')\n"),
              "");
    EXPECT_TRUE(call("main"));
    interpreter->setScriptArguments(script(), {});
    EXPECT_FALSE(interpreter->hasFunction("main"));
    EXPECT_FALSE(interpreter->hasFunction("cleanup"));
    ASSERT_EQ(run("def main(): test.log('runs', str(shared))\n"), "");
    EXPECT_TRUE(call("main"));
    EXPECT_EQ(results(), QStringList("7 runs: 1"));
}

TEST_F(PythonErrors, FunctionsThatDoNotRunAreErrors) {
    const struct {
        const char* code;
        const char* error;
    } rows[] = {
        {"async def main():\n    test.fail('x')\n",
         "main() is asynchronous and nothing of it has run: let a plain function call "
         "asyncio.run()"},
        {"async def main():\n    yield 1\n",
         "main() is asynchronous and nothing of it has run: let a plain function call "
         "asyncio.run()"},
        {"def main():\n    test.fail('x')\n    yield 1\n",
         "main() is a generator and nothing of it has run: take its 'yield' away"},
        {"import asyncio\nasync def work(): pass\ndef main(): asyncio.run(work())\n", nullptr},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("\n\n" + QString(row.code)), "");
        EXPECT_EQ(call("main"), row.error == nullptr) << row.code;
        if (row.error) {
            EXPECT_EQ(interpreter->errorMessage(), row.error);
            EXPECT_EQ(lines(), std::vector{3});
        }
    }
    EXPECT_TRUE(results().isEmpty());
}

TEST_F(PythonErrors, OnlyTheSkipItselfEndsACaseAsSkipped) {
    const struct {
        const char* body;
        bool ends;
        bool isSkip;
    } rows[] = {
        {"test.skip('s')", true, true},
        {"try: test.skip('s')\n    finally: print('x')", true, true},
        {"try: test.skip('s')\n    except BaseException as e: raise e", true, true},
        {"test.exception(lambda: test.skip('s'))", true, true},
        {"try: test.skip('s')\n    finally: raise ValueError('database is broken')", true, false},
        {"try: test.skip('s')\n    except BaseException as e: raise KeyError from e", true, false},
        {"try: test.skip('s')\n    except BaseException: pass\n    raise tamrix.FatalError('s: ')",
         true, false},
        {"try: test.skip('')\n    except BaseException: pass", false, false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("import tamrix\ndef main():\n    " + QString(row.body) + "\n"), "");
        EXPECT_EQ(call("main"), !row.ends) << row.body;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.body;
    }
    EXPECT_FALSE(interpreter->evaluate("test.skip('while it loads')\n", script()));
    EXPECT_TRUE(interpreter->errorIsSkip());
}

TEST_F(PythonErrors, FatalErrorsPassEverything) {
    ASSERT_EQ(run("import tamrix\n"
                  "def main():\n"
                  "    try:\n"
                  "        test.exception('test.skip(\"no printer\", \"offline\")')\n"
                  "    except Exception:\n"
                  "        test.fail('swallowed')\n"),
              "");
    EXPECT_FALSE(call("main"));
    EXPECT_EQ(interpreter->errorMessage(), "tamrix.FatalError: no printer: offline");
    // No verdict on the code: it was not its own exception.
    EXPECT_EQ(results(), QStringList("6 no printer: offline"));
}

TEST_F(PythonErrors, ObjectsThatCantBeShown) {
    EXPECT_EQ(run("class Bad:\n"
                  "    def __str__(self): raise ValueError('x')\n"
                  "    def __eq__(self, other): raise ValueError('no comparison')\n"
                  "test.xcompare(1, Bad) or test.verify(Bad(), Bad())\n"),
              "");
    EXPECT_EQ(run("test.compare(Bad(), 1)"), "ValueError: no comparison");
    EXPECT_EQ(run("class Error(Exception):\n    def __str__(self): return 1 / 0\nraise Error()"),
              "Error");
}

TEST_F(PythonErrors, AreToldWhateverAScriptHasMadeOfPython) {
    EXPECT_EQ(run("import builtins, sys\n"
                  "for name in ('isinstance', 'str', 'getattr', 'len', 'type', 'repr'):\n"
                  "    setattr(builtins, name, None)\n"
                  "print('still')\n"
                  "raise KeyError('k') from ValueError('v')\n"),
              "KeyError: 'k'\ncaused by ValueError: v");
    EXPECT_EQ(report.all<OutputWritten>().at(0).text, "still\n");
    EXPECT_EQ(lines(), std::vector{5});
}

/// Endless recursion leaves no room, and yet is told by code in Python.
TEST_F(PythonErrors, AreToldAtTheLimitOfRecursion) {
    define("called", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        s_seen.append(error);
        return true;
    });
    EXPECT_TRUE(run("def fail(): raise ValueError('deep')\n"
                    "def endless():\n"
                    "    called(fail)\n"
                    "    endless()\n"
                    "endless()\n")
                    .startsWith("RecursionError: maximum recursion depth exceeded"));
    EXPECT_GT(s_seen.size(), 100);
    for (const QString& error : s_seen)
        EXPECT_TRUE(error == "ValueError: deep" || error.startsWith("RecursionError: maximum"))
            << error.toStdString();
}

TEST_F(PythonErrors, OutputStandsInOrder) {
    EXPECT_EQ(run("import sys\n"
                  "print('one', end=' ')\n"
                  "print('two')\n"
                  "print('cut', end='')\n"
                  "test.log('between')\n"
                  "sys.stderr.write('to err')\n"
                  "sys.stdout.write('last')\n"
                  "assert sys.stdout.encoding == 'utf-8' and not sys.stdout.isatty()\n"),
              "");
    QStringList seen;
    for (const ReportEntry& entry : report.entries) {
        if (const auto* output = eventOf<OutputWritten>(entry))
            seen.append((output->stream == OutputStream::StandardError ? "stderr:" : "stdout:") +
                        output->text);
        if (const auto* logged = eventOf<ResultAdded>(entry))
            seen.append(":" + logged->message);
    }
    EXPECT_EQ(seen, (QStringList{"stdout:one two\n", "stdout:cut", ":between", "stderr:to err",
                                 "stdout:last"}));
    EXPECT_EQ(run("print(1, file=sys.stdout, flush=True)\nsys.stdout.write(5)"),
              "TypeError: write() argument must be str, not int");
}

TEST_F(PythonErrors, PositionsThroughNativeCode) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        return true;
    });
    EXPECT_EQ(run("def inner():\n"
                  "    test.fail('inner')\n"
                  "    test.fixateResultContext(2)\n"
                  "    test.log('fixated')\n"
                  "    test.restoreResultContext()\n"
                  "def outer():\n"
                  "    callBack(lambda: inner())\n"
                  "outer()\n"
                  "exec('test.log(1 and \"in exec\")')\n"),
              "");
    const std::vector<ResultAdded> entries = report.results();
    const auto linesOf = [&](std::size_t index) {
        QStringList found;
        for (const LineInfo& position : entries.at(index).callStack)
            found.append(QString::number(position.lineNumber()));
        return found.join(' ');
    };
    EXPECT_EQ(linesOf(0), "2 7 7 8");
    EXPECT_EQ(linesOf(1), "7");
    EXPECT_EQ(linesOf(2), "9");
}

TEST_F(PythonErrors, ExtensionModulesImport) {
    EXPECT_EQ(run("import ctypes, sqlite3, ssl, decimal, hashlib, multiprocessing\n"
                  "assert sqlite3.connect(':memory:').execute('select 1').fetchone() == (1,)\n"),
              "");
}

}  // namespace
}  // namespace Tamrix
