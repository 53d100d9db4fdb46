// What is told of errors: their texts, the lines of the script, what ends a case.

#include <gmock/gmock.h>

#include <csignal>

#include "plugins/javascript/javascripttest.h"

namespace Tamrix {
namespace {

using namespace Test;
using testing::HasSubstr;

using JavaScriptErrors = JavaScriptTest;

TEST_F(JavaScriptErrors, StandAtTheirLines) {
    ASSERT_EQ(run("function inner() {\n"
                  "    throw new RangeError('bad');\n"
                  "}\n"
                  "function main() {\n"
                  "    inner();\n"
                  "}\n"
                  "function chained() {\n"
                  "    try { inner(); } catch (error) {\n"
                  "        throw new Error('outer', {cause: error});\n"
                  "    }\n"
                  "}\n"
                  "function plain() { throw {code: 5}; }\n"
                  "function evaluated() { eval('1;\\n inner()'); }\n"
                  "class Thing {\n"
                  "    static made = (() => 1)();\n"
                  "    get value() { return null.x; }\n"
                  "}\n"
                  "function inClass() { return new Thing().value; }\n"
                  "async function late() {\n"
                  "    await null;\n"
                  "    inner();\n"
                  "}\n"
                  "async function waiting() {\n"
                  "    await late();\n"
                  "}\n"
                  "function endless() { return endless() + 1; }\n"
                  "function callback() { [1].map(() => inner()); }\n"
                  "class Own extends Error {}\n"
                  "class More extends Own {}\n"
                  "function ownError() {\n"
                  "    throw new More('x');\n"
                  "}\n"),
              "");
    const struct {
        const char* function;
        const char* message;
        std::vector<int> lines;
    } rows[] = {
        {"main", "RangeError: bad", {2, 5}},
        {"chained", "Error: outer\ncaused by RangeError: bad", {9}},
        {"plain", "{code: 5}", {12}},
        {"evaluated", "RangeError: bad", {2, 13, 13}},
        {"inClass", "TypeError: null has no properties", {16, 18}},
        {"waiting", "RangeError: bad", {2, 21, 24}},
        {"callback", "RangeError: bad", {2, 27, 27}},
        // Classes without a constructor run one that stands nowhere.
        {"ownError", "More: x", {31}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(call(row.function), row.message);
        EXPECT_EQ(lines(), row.lines) << row.function;
        EXPECT_EQ(interpreter->errorFile({}),
                  QFileInfo(folder.path()).canonicalFilePath() + "/test.js");
    }
    EXPECT_EQ(call("endless"), "InternalError: too much recursion");
    EXPECT_EQ(lines().size(), 100u);

    EXPECT_EQ(run("1"), "");
    EXPECT_EQ(interpreter->errorLine(), -1);
    EXPECT_TRUE(interpreter->errorCallStack().empty());
    EXPECT_EQ(call("nothing"), "The script has no function 'nothing'");
}

TEST_F(JavaScriptErrors, Syntax) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"x = 1\nif x\n", 2, "SyntaxError: missing ( before condition"},
        {"let a = 1;\nlet a = 2;\n", 2, "SyntaxError: redeclaration of let a"},
        {"f(\n", 2, "SyntaxError: expected expression, got end of script"},
        {"import 'x';\n\nlet = = 1\n", 3, "SyntaxError: "},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(interpreter->checkSyntax(row.text, script()));
        EXPECT_EQ(interpreter->errorLine(), row.line) << row.text;
        EXPECT_THAT(interpreter->errorMessage().toStdString(), testing::StartsWith(row.message));
    }
    EXPECT_FALSE(interpreter->checkSyntax(QString("x = 1\ny = ") + QChar(0), script()));
    EXPECT_EQ(interpreter->errorLine(), 2);

    // A module with a syntax error is named with its line.
    ASSERT_TRUE(writeFile(folder.filePath("broken.js"), "\n\nx = = 1\n"));
    EXPECT_THAT(run("\nimport './broken.js'").toStdString(), HasSubstr("SyntaxError"));
    EXPECT_EQ(lines(), std::vector{3});
    EXPECT_EQ(QFileInfo(interpreter->errorFile({})).fileName(), "broken.js");
}

TEST_F(JavaScriptErrors, CodeWithoutAFileHasALine) {
    EXPECT_FALSE(interpreter->evaluate("var x = 1\nx = nothing\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
    EXPECT_EQ(interpreter->errorFile("none"), "none");
    EXPECT_FALSE(interpreter->evaluate("x = (\n", QString()));
    EXPECT_EQ(interpreter->errorLine(), 2);
}

TEST_F(JavaScriptErrors, OfTheLibraryHaveClasses) {
    define("fail",
           [](ScriptContext* context) {
               context->setError(
                   "told", static_cast<ScriptContext::ErrorType>(context->argument(0)->toInt()));
               return false;
           },
           {"kind"});
    EXPECT_EQ(run(R"js(
const expected = [["Error", true], ["VerificationError", true], ["FatalError", false],
                  ["LookupError", true]];
expected.forEach(([name, isOrdinary], kind) => {
    try {
        fail(kind);
    } catch (error) {
        test.verify(error instanceof tamrix[name] && error instanceof Error, name);
        test.compare(error instanceof tamrix.Error, isOrdinary);
        test.compare(String(error), `tamrix.${name}: told`);
        test.verify(error.stack.includes("test.js:6"), error.stack);
    }
});
)js"),
              "");
    EXPECT_EQ(results().size(), 16);
    for (const QString& each : results())
        EXPECT_TRUE(each.startsWith("10 ")) << qPrintable(each);
}

TEST_F(JavaScriptErrors, OnlyTheSkipItselfEndsACaseAsSkipped) {
    const struct {
        const char* body;
        bool ends;
        bool isSkip;
    } rows[] = {
        {"test.skip('s')", true, true},
        {"try { test.skip('s') } finally { console.log('x') }", true, true},
        {"try { test.skip('s') } catch (e) { throw e }", true, true},
        {"test.exception(() => test.skip('s'))", true, true},
        {"try { test.skip('s') } finally { throw new Error('database is broken') }", true, false},
        {"try { test.skip('s') } catch (e) { throw new Error('x', {cause: e}) }", true, false},
        {"try { test.skip('s') } catch (e) {} throw new tamrix.FatalError('s: ')", true, false},
        {"try { test.skip('') } catch (e) {}", false, false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("function main() {\n" + QString(row.body) + "\n}\n"), "");
        EXPECT_EQ(call("main") == "", !row.ends) << row.body;
        EXPECT_EQ(interpreter->errorIsSkip(), row.isSkip) << row.body;
    }
    EXPECT_FALSE(interpreter->evaluate("test.skip('while it loads')\n", script()));
    EXPECT_TRUE(interpreter->errorIsSkip());
}

TEST_F(JavaScriptErrors, OnesThatCantBeWritten) {
    EXPECT_EQ(run("class Bad extends Error {\n"
                  "    get name() { throw 1; }\n"
                  "    get message() { throw 2; }\n"
                  "    get stack() { throw 3; }\n"
                  "    toString() { throw 4; }\n"
                  "}\n"
                  "throw new Bad();\n"),
              "An error that can't be written");
}

TEST_F(JavaScriptErrors, ExitEndsTheCase) {
    ASSERT_EQ(
        run("function init() { try { tamrix.exit(); } catch (error) { test.fail('caught'); } }\n"
            "function main() { test.fail('not reached'); }\n"
            "function cleanup() { test.log('cleaned'); }\n"
            "function failing() { try { tamrix.exit(3); } finally { test.fail('reached'); } }\n"
            "function late() { Promise.resolve().then(() => tamrix.exit(4)); }\n"),
        "");
    EXPECT_EQ(call("failing"), "The script ended with exit(3)");
    EXPECT_EQ(interpreter->errorLine(), 4);
    EXPECT_EQ(call("late"), "The script ended with exit(4)");
    EXPECT_EQ(interpreter->errorLine(), 5);
    EXPECT_EQ(call("init"), "");
    EXPECT_EQ(call("main"), "");
    EXPECT_EQ(call("cleanup"), "");
    EXPECT_EQ(results(), QStringList("7 cleaned: "));
}

TEST_F(JavaScriptErrors, PromisesThatNobodyLooksAt) {
    const struct {
        const char* body;
        const char* error;
    } rows[] = {
        {"await Promise.reject(new Error('a'))", "Error: a"},
        {"Promise.reject(new Error('b'))", "Error: b"},
        {"Promise.reject(new Error('c')).catch(() => {})", ""},
        {"await new Promise(() => {})", "Error: A promise is waited for that nothing will settle"},
        {"await new Promise(done => setTimeout(done, 5))", ""},
        {"const two = await new Promise(done => setTimeout((a, b) => done(a + b), 1, 'c', 'd'));\n"
         "if (two !== 'cd') throw two",
         ""},
        {"const t = setTimeout(() => { throw 1 }, 1); clearTimeout(t);\n"
         "await new Promise(done => setTimeout(done, 20))",
         ""},
        {"await new Promise(done => { setTimeout(() => { throw 'd' }, 1); setTimeout(done, 20) })",
         "d"},
        {"test.compare(await Promise.all([1, Promise.resolve(2)]), [1, 2])", ""},
        {"const ref = new WeakRef({a: 1}); await null;\n"
         "if (!(ref.deref()?.a ?? 1)) throw ref",
         ""},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(run("async function main() {\n" + QString(row.body) + "\n}\n"), "");
        EXPECT_EQ(call("main"), row.error) << row.body;
    }
    ASSERT_EQ(run("function* generator() { test.fail('x') }\n"), "");
    EXPECT_EQ(call("generator"),
              "TypeError: generator() is a generator and nothing of it has run: take its '*' away");
    EXPECT_EQ(lines(), std::vector{1});
}

TEST_F(JavaScriptErrors, OutputStandsInOrder) {
    EXPECT_EQ(run("console.log('one', 2, [3]);\n"
                  "test.log('between');\n"
                  "console.error('to err');\n"
                  "print('last')\n"),
              "");
    QStringList seen;
    for (const ReportEntry& entry : report.entries) {
        if (const auto* output = eventOf<OutputWritten>(entry))
            seen.append((output->stream == OutputStream::StandardError ? "stderr:" : "stdout:") +
                        output->text);
        if (const auto* logged = eventOf<ResultAdded>(entry))
            seen.append(":" + logged->message);
    }
    EXPECT_EQ(seen,
              (QStringList{"stdout:one 2 [3]\n", ":between", "stderr:to err\n", "stdout:last\n"}));
}

TEST_F(JavaScriptErrors, PositionsThroughNativeCode) {
    define("callBack", [](ScriptContext* context) {
        QString error;
        context->argument(0)->call({}, &error);
        return true;
    });
    EXPECT_EQ(run("function inner() {\n"
                  "    test.fail('inner');\n"
                  "    test.fixateResultContext(2);\n"
                  "    test.log('fixated');\n"
                  "    test.restoreResultContext();\n"
                  "}\n"
                  "function outer() {\n"
                  "    callBack(() => inner());\n"
                  "}\n"
                  "outer();\n"
                  "eval('test.log(1 && \"in eval\")');\n"
                  "new Function('test.log(\"in a function\")')();\n"),
              "");
    QStringList found;
    for (const ResultAdded& entry : report.results()) {
        QStringList numbers;
        for (const LineInfo& position : entry.callStack)
            numbers.append(QString::number(position.lineNumber()));
        found.append(numbers.join(' '));
    }
    EXPECT_EQ(found.mid(1), (QStringList{"8", "11", "12"}));
    EXPECT_TRUE(found.at(0).startsWith("2")) << qPrintable(found.at(0));
}

// A script that means harm ends itself alone

TEST_F(JavaScriptErrors, HostileScripts) {
    const struct {
        const char* body;
        const char* error;
    } rows[] = {
        {"let a = []; a.push(a); JSON.stringify(a)", "TypeError: cyclic object value"},
        {"const p = new Proxy({}, {get() { return p.x; }}); p.x",
         "InternalError: too much recursion"},
        {"'x'.repeat(2 ** 30)", "RangeError: repeat count must be less than infinity"},
        {"new ArrayBuffer(2 ** 40)", "RangeError: "},
        {"for (let a = [];;) a.push({x: a.length})", "Out of memory"},
        {"globalThis.test = 5; test.log('x')", "TypeError: test.log is not a function"},
        {"Object.prototype.toString = () => { throw 1 }; describe({})", ""},
        {"Array.prototype.push = undefined; describe([1])", ""},
        {"tamrix = null; test.skip()", ""},
    };
    define("describe", [](ScriptContext* context) {
        s_seen.append(context->argument(0)->toString());
        return true;
    });
    for (const auto& row : rows) {
        interpreter->setScriptArguments(script(), {});
        define("describe", [](ScriptContext* context) {
            s_seen.append(context->argument(0)->toString());
            return true;
        });
        ASSERT_EQ(run("function main() {\n" + QString(row.body) + "\n}\n"), "");
        EXPECT_THAT(call("main").toStdString(), testing::StartsWith(row.error)) << row.body;
    }
}

TEST_F(JavaScriptErrors, AnInterruptEndsALoop) {
    ASSERT_EQ(run("function main() {\n"
                  "    while (true)\n"
                  "        try { raiseInterrupt(); while (true); } catch (error) {}\n"
                  "}\n"
                  "function raiseInterrupt() { interrupt(); }\n"),
              "");
    define("interrupt", [](ScriptContext*) {
        std::raise(SIGINT);
        return true;
    });
    EXPECT_EQ(call("main"), "Interrupted");
    EXPECT_EQ(lines().back(), 3);
    EXPECT_EQ(run("1"), "");
}

}  // namespace
}  // namespace Tamrix
