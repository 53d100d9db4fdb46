// The dialogs in which scripts ask a person, with the agent in that person's place.

#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QImage>

#include "e2e/applicationrun.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Tamrix::Test::ApplicationRun;
using Tamrix::Test::RunnerProcess;

class TestInteractionDialogs : public ApplicationRun {
protected:
    /// A case that does something with the dialog of these arguments, and logs what it printed.
    void addDialog(const QString& name, const QString& arguments, const QByteArray& steps) {
        // The dialog may end before it has answered the step that ends it.
        addCase(name,
                "def last(step):\n    try:\n        step()\n    except Exception as error:\n"
                "        test.verify('has ended' in str(error), str(error))\n\n"
                "def main():\n    dialog = startApplication(\"" TAMRIX_TEST_PREFIX
                "/lib/exec/testinteraction " +
                    arguments.toUtf8() + "\")\n    " + steps +
                    "\n    waitFor(lambda: not dialog.isRunning(), 100000)\n"
                    "    test.log('printed', dialog.readStdout())\n");
    }
};

TEST_F(TestInteractionDialogs, AreAnsweredWithMouseAndKeyboard) {
    const struct {
        const char* name;
        QString arguments;
        const char* steps;
        QStringList results;
    } rows[] = {
        {"information",
         "information Title 'plain <b>text</b>'",
         "test.log('shown', waitForObject(\"{objectName='message'}\").text)\n"
         "    last(lambda: click(\"{type='QPushButton'}\"))",
         {"plain <b>text</b>", "it exited with code 21"}},
        {"warning",
         "warning Title text",
         "last(lambda: press(waitForObject(\"{type='QPushButton'}\"), 'Escape'))",
         {"it exited with code 21"}},
        {"yes",
         "question Title text",
         "last(lambda: press(waitForObject(\"{type='QPushButton' text='Yes'}\"), 'Return'))",
         {"it exited with code 24"}},
        {"no",
         "question Title text",
         "last(lambda: click(\"{type='QPushButton' text='No'}\"))",
         {"it exited with code 28"}},
        {"closed",
         "question Title text",
         "last(lambda: press(waitForObject(\"{type='QPushButton' text='Yes'}\"), 'Escape'))",
         {"it exited with code 22"}},
        {"input",
         "input Title text before",
         "test.compare(waitForObject(\"{objectName='input'}\").text, 'before')\n"
         "    fill(\"{objectName='input'}\", 'J\\u00f6')\n"
         "    last(lambda: press(waitForObject(\"{objectName='input'}\"), 'Return'))",
         {"\"J\\u00f6\\n\"", "it exited with code 21"}},
        {"cancel",
         "input Title text before",
         "last(lambda: click(\"{type='QPushButton' text='Cancel'}\"))",
         {"it exited with code 22"}},
        {"password",
         "password Title text",
         "field = waitForObject(\"{objectName='input'}\")\n    fill(field, 's3cret')\n"
         "    test.compare(str(field.displayText).count('s'), 0)\n"
         "    test.verify('s3cret' not in open('/proc/%d/cmdline' % dialog.pid()).read())\n"
         "    last(lambda: press(field, 'Return'))",
         {"\"s3cret\\n\"", "it exited with code 21"}},
        {"choice",
         "choice Title text one 'two three' four",
         "items = waitForObject(\"{objectName='items'}\")\n    press(items, 'Down')\n"
         "    last(lambda: press(items, 'Return'))",
         {"\"two three\\n\"", "it exited with code 21"}},
        {"long",
         "information Title '" + QString("word ").repeated(3000) + "'",
         "test.verify(object.exists(\"{type='QScrollArea'}\"))\n"
         "    last(lambda: click(\"{type='QPushButton'}\"))",
         {"it exited with code 21"}},
        {"notice",
         "notification Title text 1000",
         "waitForObjectExists(\"{type='QLabel' text='text'}\")",
         {"it exited with code 21"}},
        {"usage", "list Title", "", {"'list' is none of choice, image, information"}},
    };
    for (const auto& row : rows)
        addDialog(row.name, row.arguments, row.steps);
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    for (const auto& row : rows) {
        const QString results = resultsOf(row.name);
        for (const QString& text : row.results)
            EXPECT_TRUE(results.contains(text)) << row.name << ": " << qPrintable(results);
        const bool isShown = row.steps[0] != '\0';
        EXPECT_EQ(runner.output().contains(QString("PASS  %1 ").arg(row.name)), isShown)
            << qPrintable(results);
    }
}

TEST_F(TestInteractionDialogs, ShowAPictureAndRemoveWhatScriptsLeave) {
    const QString own = suite.path("own.png");
    // As the library names its own, and as no other test does.
    const QString left = QDir::temp().filePath(
        QString("interactionImage%1").arg(::getpid() % 1'000'000, 6, 10, QLatin1Char('0')));
    QImage image(4000, 1000, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(own, "PNG") && image.save(left, "PNG"));
    addDialog("picture", "image Title look " + left + " 60000",
              "test.log('size', waitForObjectExists(\"{objectName='size'}\").text)\n"
              "    last(lambda: click(\"{objectName='picture'}\"))");
    addDialog("own", "image Title '' " + own + " 300", "pass");
    addDialog("none", "image Title '' /none.png 300", "pass");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    const QString results = resultsOf("picture");
    EXPECT_TRUE(results.contains("4000 x 1000 pixels, shown at ")) << qPrintable(results);
    EXPECT_FALSE(QFile::exists(left));
    EXPECT_TRUE(QFile::exists(own)) << "a file of the user is removed";
    EXPECT_TRUE(resultsOf("none").contains("testinteraction: '/none.png' can't be shown: "));
}

TEST_F(TestInteractionDialogs, NeedAnInteractiveRun) {
    addCase("a", R"(def main():
    test.log("%s %s" % (testInteraction.isAvailable(), testInteraction.Yes + testInteraction.None_))
    testInteraction.notification("hello", 0.2)
    test.log("shown")
)");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(resultsOf("a").contains("False 4"));
    EXPECT_TRUE(resultsOf("a").contains(
        "testInteraction API requires tamrixrunner to be started with the --interactive switch"));
    RunnerProcess interactive;
    prepare(interactive);
    interactive.run(
        {"run", suite.path("suite"), "--result-dir", suite.path("results"), "--interactive"});
    EXPECT_EQ(interactive.exitCode(), 0) << qPrintable(interactive.output());
    EXPECT_TRUE(resultsOf("a").contains("True 4")) << qPrintable(resultsOf("a"));
    EXPECT_TRUE(resultsOf("a").contains("\"shown\""));
    // The notice goes by itself.
    EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return leftProcesses().isEmpty(); }));
}

}  // namespace
}  // namespace Tamrix
