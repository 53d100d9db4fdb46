#include "interpreter/generic/testinteraction.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QThread>

#include "interpreter/generic/apitest.h"
#include "interpreter/generic/imageobjects.h"
#include "support/environmentguard.h"
#include "support/files.h"

namespace Tamrix {
namespace {

using namespace Test;

/// The functions with a shell script in the place of the dialogs: it tells its arguments, a line
/// each, in a file.
class TestInteractionTest : public ApiTest {
protected:
    TestInteractionTest() {
        TestInteraction::setInteractive(true);
        useTool("exit 21");
    }
    ~TestInteractionTest() override { TestInteraction::setInteractive(false); }

    void useTool(const QByteArray& end) {
        const QString path = testInteractionBinary();
        ASSERT_TRUE(writeFile(
            path, "#!/bin/sh\nprintf '%s\\n' \"$@\" > " + folder.filePath("part").toLocal8Bit() +
                      "\nmv " + folder.filePath("part").toLocal8Bit() + " " +
                      folder.filePath("arguments").toLocal8Bit() + "\n" + end + "\n"));
        ASSERT_TRUE(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// What the script was started with; waits for one that nobody waits for.
    QString arguments() {
        const QString path = folder.filePath("arguments");
        QElapsedTimer timer;
        timer.start();
        while (!QFile::exists(path) && timer.elapsed() < 100'000)
            QThread::msleep(5);
        const QString text = QString::fromUtf8(readFile(path)).trimmed();
        QFile::remove(path);
        return QString(text).replace('\n', '|');
    }

    QTemporaryDir folder;
    const EnvironmentGuard prefix{"TAMRIX_PREFIX", folder.path()};
};

TEST_F(TestInteractionTest, AskAndTellTheAnswer) {
    const QString title = "Tamrix - test.fake:7";
    const struct {
        ScriptContext::Function function;
        ScriptArgument::List arguments;
        const char* answer;
        QString asked;
        QString result;
    } rows[] = {
        {interactionInformation, {text("ü a\tb")}, "exit 21", "information|%1|ü a\tb", "1"},
        {interactionQuestion, {text("?")}, "exit 22", "question|%1|?", "2"},
        {interactionQuestion, {text("?")}, "exit 24", "question|%1|?", "4"},
        {interactionQuestion, {text("?")}, "exit 28", "question|%1|?", "8"},
        {interactionWarning, {text("!")}, "exit 21", "warning|%1|!", "1"},
        {interactionInput,
         {text("name"), text("Jo")},
         "echo ' ü x '; exit 21",
         "input|%1|name|Jo",
         "ü x"},
        {interactionInput, {text("name")}, "exit 22", "input|%1|name", ""},
        {interactionPassword, {text("key")}, "echo s3cret; exit 21", "password|%1|key", "s3cret"},
        {interactionChoice,
         {text("which"), list({text("a b"), integer(2)})},
         "echo 'a b'; exit 21",
         "choice|%1|which|a b|2",
         "a b"},
    };
    for (const auto& row : rows) {
        useTool(row.answer);
        EXPECT_EQ(call(row.function, row.arguments), row.result);
        EXPECT_FALSE(context.hasError());
        EXPECT_EQ(arguments(), row.asked.arg(title));
    }
}

TEST_F(TestInteractionTest, AnEmptyInitialTextIsPassed) {
    useTool("test $# -eq 4 && exit 21");
    EXPECT_EQ(call(interactionInput, {text("name")}), "");
}

TEST_F(TestInteractionTest, FailuresOfTheDialogAreVerificationErrors) {
    const QString failed = "Failed to display testInteraction dialog: ";
    const struct {
        const char* end;
        QString error;
    } rows[] = {
        {"echo 'no display' >&2; exit 1", "no display\n"},
        {"exit 23", "'" + testInteractionBinary() + "' exited with code 23"},
        {"kill -SEGV $$", "'" + testInteractionBinary() + "': Process crashed"},
    };
    for (const auto& row : rows) {
        useTool(row.end);
        EXPECT_EQ(call(interactionQuestion, {text("?")}), failed + row.error);
        EXPECT_EQ(context.errorType(), ScriptContext::VerificationError);
    }
    QFile::remove(testInteractionBinary());
    EXPECT_TRUE(call(interactionQuestion, {text("?")}).startsWith(failed));
    EXPECT_TRUE(call(interactionNotification, {text("x")}).startsWith(failed));
}

TEST_F(TestInteractionTest, NoticesLetTheScriptGoOn) {
    useTool("sleep 2; exit 21");
    QElapsedTimer timer;
    timer.start();
    const QString title = "|Tamrix - test.fake:7|";
    const struct {
        ScriptArgument::List arguments;
        const char* milliseconds;
    } rows[] = {
        {{text("hi")}, "5000"},
        {{text("hi"), number(1.5)}, "1500"},
        {{text("hi"), integer(0)}, "5000"},
        {{text("hi"), number(1e30)}, "2147483647"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(call(interactionNotification, row.arguments), context.createNull()->toString());
        EXPECT_EQ(arguments(), "notification" + title + "hi|" + row.milliseconds);
    }

    const SharedPtr<ScriptArgument> picture(new FakeArgument(
        SharedPtr<NativeScriptObject>(new ImageScriptObject(QImage(3, 2, QImage::Format_RGB32)))));
    call(interactionShowImage, {picture, text("look"), integer(2)});
    const QStringList words = arguments().split('|');
    ASSERT_EQ(words.size(), 5);
    EXPECT_EQ(words[0], "image");
    EXPECT_EQ(words[2], "look");
    EXPECT_EQ(words[4], "2000");
    EXPECT_EQ(QImage(words[3], "PNG").size(), QSize(3, 2)) << "the file is still there";
    QFile::remove(words[3]);
    EXPECT_LT(timer.elapsed(), 20000);
}

TEST_F(TestInteractionTest, RefuseWrongArguments) {
    const auto one = text("x");
    const auto wrong = integer(1);
    const auto nobody = [&](ScriptContext::Function function) {
        return Refusal{function,
                       {one},
                       "testInteraction API requires tamrixrunner to be started with the "
                       "--interactive switch"};
    };
    const char* const notification =
        "testInteraction.notification() expects a text argument and an optional timeout value.";
    const char* const inputCount =
        "testInteraction.input(message[, initialText]) expects one or two arguments";
    expectRefusals({
        {interactionInformation, {}, "testInteraction::information(text) expects one argument"},
        {interactionPassword, {one, one}, "testInteraction::password(text) expects one argument"},
        {interactionQuestion,
         {wrong},
         "testInteraction::question(text) expected string as argument"},
        {interactionWarning, {wrong}, "testInteraction::warning(text) expected string as argument"},
        {interactionChoice,
         {one},
         "testInteraction.choice(message, listItems) expects two arguments"},
        {interactionChoice,
         {wrong, one},
         "testInteraction.choice(message, listItems) expects a string as first argument"},
        {interactionChoice,
         {one, one},
         "testInteraction.list(message, listItems) expects a list as second argument"},
        {interactionInput, {}, inputCount},
        {interactionInput, {one, one, one}, inputCount},
        {interactionInput,
         {wrong},
         "testInteraction.input(message[, initialText]) expects a string as first argument"},
        {interactionInput,
         {one, wrong},
         "testInteraction.input(message[, initialText]) expects a string as second argument"},
        {interactionNotification, {}, notification},
        {interactionNotification, {one, one}, notification},
        {interactionShowImage, {}, "testInteraction::showImage(image) requires an image argument"},
        {interactionShowImage,
         {one, one, one, one},
         "testInteraction::showImage(image) takes at most three arguments"},
        {interactionShowImage, {one}, "The first argument must be an Image object"},
    });
    EXPECT_EQ(call(interactionIsAvailable), boolean(true)->toString());
    TestInteraction::setInteractive(false);
    expectRefusals({nobody(interactionChoice), nobody(interactionInformation),
                    nobody(interactionInput), nobody(interactionNotification),
                    nobody(interactionPassword), nobody(interactionQuestion),
                    nobody(interactionShowImage), nobody(interactionWarning)});
    EXPECT_EQ(call(interactionIsAvailable), boolean(false)->toString());
    EXPECT_FALSE(QFile::exists(folder.filePath("arguments"))) << "a dialog was shown";
}

}  // namespace
}  // namespace Tamrix
