#include <csignal>

#include <QElapsedTimer>

#include "runner/remote/systemoperations.h"
#include "runner/remote/systems.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using namespace Test;

class SystemCommands : public SystemTest {
protected:
    Outcome<CommandResult> shell(const QString& script, int timeout = 60000) {
        SystemCommand command{{"sh", "-c", script}};
        command.timeout = timeout;
        return system->execute(command);
    }
    /// Standard output of a program that is to succeed.
    QByteArray output(const SystemCommand& command) {
        const Outcome<CommandResult> result = system->execute(command);
        EXPECT_EQ(errorOf(result), "");
        return result ? result->standardOutput : QByteArray();
    }
};
TAMRIX_FOR_ALL_SYSTEMS(SystemCommands);

TEST_P(SystemCommands, TellWhatAProgramWroteAndHowItEnded) {
    const Outcome<CommandResult> result = shell("printf out; printf err >&2; exit 3");
    ASSERT_TRUE(result) << qPrintable(errorOf(result));
    EXPECT_EQ(result->standardOutput, "out");
    EXPECT_EQ(result->standardError, "err");
    EXPECT_EQ(result->exitCode, 3);
    EXPECT_EQ(shell("kill -KILL $$")->exitCode, 128 + SIGKILL);
    // Nothing to read, and nothing of the shell.
    EXPECT_EQ(shell("cat; echo $#")->standardOutput, "0\n");
}

TEST_P(SystemCommands, ArgumentsFolderAndEnvironmentArriveAsTheyAre) {
    const QStringList words = {"a b", "it's", "\"q\"", "$HOME", "`id`",          "*",
                               "\\n", "",     "-n",    "a\nb",  "ü日\U0001F600", "!x"};
    QByteArray wanted;
    for (const QString& word : words)
        wanted += word.toUtf8() + '|';
    EXPECT_EQ(output({QStringList{"printf", "%s|"} + words}), wanted);

    ASSERT_TRUE(QDir().mkpath(path("a folder's/-")));
    EXPECT_EQ(output({{"pwd", "-P"}, path("a folder's/-")}),
              QFileInfo(path("a folder's/-")).canonicalFilePath().toUtf8() + '\n');

    SystemCommand print{{"printenv", "A_1"}};
    print.environment = {{"A_1", "it's $x\nü"}};
    EXPECT_EQ(output(print), QByteArray("it's $x\nü\n"));
    SystemCommand all{{"/usr/bin/env"}};
    all.environment = {{"A_1", "1"}};
    all.clearsEnvironment = true;
    EXPECT_EQ(output(all), "A_1=1\n");
}

TEST_P(SystemCommands, MegabytesOnBothStreams) {
    constexpr int size = 3 * 1024 * 1024;
    const Outcome<CommandResult> result =
        shell(QString("head -c %1 /dev/zero >&2 & head -c %1 /dev/zero | tr '\\0' '\\377'; wait")
                  .arg(size));
    ASSERT_TRUE(result) << qPrintable(errorOf(result));
    EXPECT_EQ(result->standardOutput, QByteArray(size, '\xff'));
    EXPECT_EQ(result->standardError, QByteArray(size, '\0'));
}

TEST_P(SystemCommands, TimeOutEndsTheProgramAndItsChildren) {
    const QString pids = path("pids");
    // On a busy machine a second may be over before the program has begun.
    for (int seconds = 1; seconds < 100 && !readFile(pids).endsWith('\n'); seconds *= 2) {
        QElapsedTimer timer;
        timer.start();
        const Outcome<CommandResult> result =
            shell(QString("trap '' TERM; sleep 1000 & echo $$ $! > '%1'; wait; wait").arg(pids),
                  seconds * 1000);
        EXPECT_EQ(errorOf(result),
                  QString("'sh' did not end within %1 s and was ended").arg(seconds));
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().kind, FailureKind::TimedOut);
        EXPECT_LT(timer.elapsed(), 500'000);
    }
    const QList<QByteArray> started = readFile(pids).trimmed().split(' ');
    ASSERT_EQ(started.size(), 2);
    for (const QByteArray& pid : started) {
        // Behind the kill it takes a moment until a process is gone.
        EXPECT_TRUE(waitUntil([&] { return !isRunning(pid.toInt()); })) << pid.constData();
    }
    // The connection is of use afterwards.
    EXPECT_EQ(shell("echo more")->standardOutput, "more\n");
}

TEST_P(SystemCommands, WhatAProgramLeavesRunningIsNotWaitedFor) {
    QElapsedTimer timer;
    timer.start();
    const Outcome<CommandResult> result = shell("sleep 200 & echo started");
    ASSERT_TRUE(result) << qPrintable(errorOf(result));
    EXPECT_EQ(result->standardOutput, "started\n");
    EXPECT_LT(timer.elapsed(), 100'000);
}

TEST_P(SystemCommands, AnInterruptEndsTheProgram) {
    int calls = 0;
    system->setIdleHook([&calls] { return ++calls < 3; });
    EXPECT_TRUE(errorOf(shell("exec sleep 1000")).contains("interrupted"));
    system->setIdleHook({});
    EXPECT_EQ(shell("echo more")->standardOutput, "more\n");
}

TEST_P(SystemCommands, RefusesWhatCannotBeStarted) {
    struct Row {
        SystemCommand command;
        QString error;
    };
    const Row rows[] = {
        {{{}}, "no program is named"},
        {{{"nosuchprogram"}}, "there is no program 'nosuchprogram'"},
        {{{"/etc/passwd"}}, "there is no program '/etc/passwd'"},
        {{{"/"}}, "there is no program '/'"},
        {{{"true"}, "/no/such/folder"}, "there is no folder '/no/such/folder' to work in"},
        {{{"true"}, "", {{"A-B", "1"}}}, "'A-B' is no name of an environment variable"},
        {{{"true"}, "", {{"A;id", "1"}}}, "'A;id' is no name of an environment variable"},
        {{{"true", QString("a%1").arg(QChar(0))}}, "the command holds a NUL: 'a'"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(errorOf(system->execute(row.command)), row.error);
}

TEST_P(SystemCommands, FactsOfTheSystem) {
    EXPECT_EQ(osName(*system).value_or(""), "Linux");
    EXPECT_EQ(environmentVariable(*system, "NO_SUCH_VARIABLE").value_or("none"), "");
    EXPECT_NE(environmentVariable(*system, "PATH").value_or(""), "");
    EXPECT_EQ(errorOf(environmentVariable(*system, "A=B")),
              "'A=B' is no name of an environment variable");
}

TEST(SystemTexts, EncodingsOfFilesAndOutput) {
    EXPECT_EQ(encoded("ü\n", "ISO-8859-1").value_or(""), QByteArray("\xfc\n"));
    EXPECT_EQ(encoded("a", "UTF-16LE").value_or(""), QByteArray("a\0", 2));
    EXPECT_EQ(errorOf(encoded("日", "ISO-8859-1")),
              "the text has characters that the encoding 'ISO-8859-1' lacks");
    EXPECT_EQ(errorOf(encoded("a", "klingon")), "the encoding 'klingon' is not known");
    EXPECT_EQ(decoded("a\r\nb\rc", "UTF-8", LineEnds::OfThisSystem).value_or(""), "a\nb\rc");
    EXPECT_EQ(decoded("a\r\n\xfc", "ISO-8859-1", LineEnds::AsTheyAre).value_or(""),
              QString("a\r\nü"));
}

}  // namespace
}  // namespace Tamrix
