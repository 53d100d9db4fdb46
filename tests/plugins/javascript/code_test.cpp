// Where code comes from: scripts, modules, files that are sourced, and what a case leaves behind.

#include <QDir>

#include "plugins/javascript/javascripttest.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptCode : public JavaScriptTest {
protected:
    void write(const char* name, const char* text) {
        const QString path = folder.filePath(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        ASSERT_TRUE(writeFile(path, text));
    }
};

TEST_F(JavaScriptCode, AScriptWithImportsIsAModule) {
    write("lib/prices.js",
          "import {rate} from './rate.mjs';\n"
          "export const price = n => n * rate;\n"
          "export default 'prices';\n");
    write("lib/rate.mjs", "export const rate = 3;\nconsole.log(import.meta.url.slice(0, 8));\n");
    write("shared/names.js",
          "export const names = ['a'];\nexport let count = 0;\n"
          "export function add() { count++; }\n");
    interpreter->addToSearchPath(QFileInfo(folder.filePath("shared")));
    ASSERT_EQ(run("import title, {price} from './lib/prices';\n"
                  "import {names, count, add} from 'names';\n"
                  "import * as again from 'names.js';\n"
                  "const own = 5;\n"
                  "export function main() {\n"
                  "    add();\n"
                  "    test.compare([title, price(2), names, count, again.count, own],\n"
                  "                 ['prices', 6, ['a'], 1, 1, 5]);\n"
                  "}\n"
                  "async function cleanup() {\n"
                  "    const later = await import('./lib/rate.mjs');\n"
                  "    test.compare(later.rate, 3);\n"
                  "    try { await import('none'); } catch (error) { "
                  "test.log(error.message.slice(0, 26)); }\n"
                  "}\n"),
              "");
    EXPECT_TRUE(interpreter->hasFunction("main"));
    EXPECT_FALSE(interpreter->hasFunction("init"));
    EXPECT_EQ(call("main"), "");
    EXPECT_EQ(call("cleanup"), "");
    ASSERT_EQ(results().size(), 3);
    EXPECT_TRUE(results().at(0).startsWith("10 "));
    EXPECT_TRUE(results().at(1).startsWith("10 "));
    EXPECT_EQ(results().at(2), "7 There is no module 'none' : ");
}

TEST_F(JavaScriptCode, ErrorsOfModulesStandWhereTheyArise) {
    write("throws.js", "export function f() {\n    throw new Error('deep');\n}\n");
    write("fails.js", "\nnull.x;\n");
    ASSERT_EQ(run("import {f} from './throws.js';\nexport function main() {\n    f();\n}\n"), "");
    EXPECT_EQ(call("main"), "Error: deep");
    EXPECT_EQ(lines(), (std::vector{2, 3}));
    EXPECT_EQ(run("\nimport './fails.js';\n"), "TypeError: null has no properties");
    EXPECT_EQ(lines(), std::vector{2});
    EXPECT_TRUE(
        run("import './none.js'").startsWith("Error: There is no module './none.js' beside"));
    EXPECT_EQ(run("import {g} from './throws.js'"), "SyntaxError: import not found: g");
}

TEST_F(JavaScriptCode, AnAwaitAtTheTopIsOfAModule) {
    EXPECT_EQ(run("const value = await new Promise(done => setTimeout(() => done(4), 1));\n"
                  "function main() { test.log(String(value)); }\n"),
              "");
    EXPECT_EQ(call("main"), "");
    EXPECT_EQ(results(), QStringList("7 4: "));
    EXPECT_EQ(run("\nawait Promise.reject(new Error('no'));\n"), "Error: no");
    EXPECT_EQ(lines(), std::vector{2});
}

TEST_F(JavaScriptCode, WhatIsSourcedIsThereAfterwards) {
    write("classic.js",
          "var shared = 1;\nfunction helper() { return shared + 1; }\nconst fixed = 7;\n");
    write("module.js", "import './classic.js';\nexport const exported = 3;\n");
    write("broken.js", "\n\nhelper(\n");
    write("throwing.js", "\nthrow new TypeError('at the top');\n");
    EXPECT_EQ(
        run(QStringLiteral("function main() {\n"
                           "    source('%1/classic.js');\n"
                           "    source('%1/module.js');\n"
                           "    test.compare([shared, helper(), fixed, exported], [1, 2, 7, 3]);\n"
                           "    for (const name of ['broken', 'throwing']) {\n"
                           "        try { source('%1/' + name + '.js'); }\n"
                           "        catch (error) { test.log(error.message.split('/').pop()); }\n"
                           "    }\n"
                           "}\n")
                .arg(folder.path())),
        "");
    EXPECT_EQ(call("main"), "");
    EXPECT_TRUE(results().at(0).startsWith("10 "));
    EXPECT_EQ(results().at(1),
              "7 broken.js:4: SyntaxError: expected expression, got end of script: ");
    EXPECT_EQ(results().at(2), "7 throwing.js:2: TypeError: at the top: ");
}

TEST_F(JavaScriptCode, FunctionsAreFoundHoweverTheyAreDefined) {
    for (const char* const text :
         {"function main() { test.log('x'); }", "const main = () => test.log('x');",
          "var main = async function () { test.log('x'); };",
          "export const main = () => test.log('x');"}) {
        interpreter->setScriptArguments(script(), {});
        report.entries.clear();
        ASSERT_EQ(run(text), "");
        EXPECT_EQ(call("main"), "") << text;
        EXPECT_EQ(results(), QStringList("7 x: ")) << text;
    }
}

TEST_F(JavaScriptCode, TheNextScriptStartsAfresh) {
    ASSERT_TRUE(interpreter->evaluate("var shared = 1;\n", QString()));  // an init script
    interpreter->setScriptArguments(script(), {"word"});
    ASSERT_EQ(run("const own = 1;\n"
                  "Array.prototype.map = null;\n"
                  "test.log = null;\n"
                  "function click() {}\n"
                  "function cleanup() { test.fail('of another script'); }\n"
                  "function main() { test.pass(tamrix.argv.slice(1).join() + shared); }\n"),
              "");
    EXPECT_EQ(call("main"), "");
    interpreter->setScriptArguments(script(), {});
    EXPECT_FALSE(interpreter->hasFunction("main"));
    EXPECT_FALSE(interpreter->hasFunction("cleanup"));
    ASSERT_EQ(run("const own = 2;\n"
                  "function main() { test.log('runs', [own, shared].map(String).join()); }\n"),
              "");
    EXPECT_EQ(call("main"), "");
    EXPECT_EQ(results(), (QStringList{"10 word1: ", "7 runs: 2,1"}));
}

TEST_F(JavaScriptCode, Settings) {
    EXPECT_EQ(
        run("testSettings.waitForObjectTimeout = 1234;\n"
            "test.compare(testSettings.waitForObjectTimeout, 1234);\n"
            "const error = (work) => { try { work(); return 'none'; } catch (e) { return e.name; } "
            "};\n"
            "test.compare(error(() => { testSettings.waitForObjectTimeot = 1; }), 'TypeError');\n"
            "const image = new Image(2, 3, 'red');\n"
            "test.compare([image.width, image.height, image instanceof Image], [2, 3, true]);\n"
            "test.compare(error(() => Image(2, 3)), 'TypeError');\n"
            "class Picture extends Image { get area() { return this.width * this.height; } }\n"
            "test.compare(new Picture(4, 5, 'red').area, 20);\n"
            "test.verify(new Image(image).equals(image));\n"),
        "");
    for (const QString& each : results())
        EXPECT_TRUE(each.startsWith("10 ")) << qPrintable(each);
}

}  // namespace
}  // namespace Tamrix
