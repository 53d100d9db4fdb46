#include "runner/remote/shellscript.h"

#include <QRegularExpression>

#include "base/nativebytes.h"

namespace Tamrix {

namespace {

// The line that tells what became of the program: the mark, a word, and the process.
const QByteArray mark = QByteArrayLiteral("\001tamrix:");
const QByteArray startedWord = QByteArrayLiteral("started ");
const QByteArray noDirectoryWord = QByteArrayLiteral("no-directory");
const QByteArray noProgramWord = QByteArrayLiteral("no-program");

/// A relative path that no command takes for an option or a name of its own.
QByteArray plainPath(const QString& path) {
    const QByteArray bytes = toNativeBytes(path);
    return bytes.startsWith('/') ? bytes : "./" + bytes;
}

/// A line that tells `word` and ends the shell.
QByteArray giveUp(const QByteArray& word) {
    return "{ printf '\\001tamrix:" + word + "\\n'; exit 127; }\n";
}

Outcome<> checkText(const QString& text, const QString& what) {
    if (!text.contains(QChar(0)))
        return {};
    return fail(FailureKind::BadArgument,
                QStringLiteral("%1 holds a NUL: '%2'").arg(what, text.section(QChar(0), 0, 0)));
}

Outcome<> checkCommand(const SystemCommand& command) {
    if (command.words.isEmpty() || command.words.constFirst().isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("no program is named"));
    for (const QString& word : command.words) {
        if (const Outcome<> checked = checkText(word, QStringLiteral("the command")); !checked)
            return checked;
    }
    static const QRegularExpression s_name(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    for (auto variable = command.environment.cbegin(); variable != command.environment.cend();
         ++variable) {
        if (!s_name.match(variable.key()).hasMatch()) {
            return fail(
                FailureKind::BadArgument,
                QStringLiteral("'%1' is no name of an environment variable").arg(variable.key()));
        }
        const Outcome<> checked = checkText(
            variable.value(), QStringLiteral("the environment variable '%1'").arg(variable.key()));
        if (!checked)
            return checked;
    }
    return checkText(command.workingDirectory, QStringLiteral("the working folder"));
}

}  // namespace

QByteArray quotedForShell(const QByteArray& word) {
    QByteArray quoted = word;
    quoted.replace('\'', "'\\''");
    return '\'' + quoted + '\'';
}

QByteArray shellCommand(const SystemCommand& command) {
    return command.clearsEnvironment ? QByteArrayLiteral("exec /usr/bin/env -i /bin/sh -s")
                                     : QByteArrayLiteral("exec /bin/sh -s");
}

Outcome<QByteArray> shellScript(const SystemCommand& command) {
    if (const Outcome<> checked = checkCommand(command); !checked)
        return fail(checked.error());
    QByteArray script;
    // 1. The folder. What a shell looks at to find folders does not count.
    if (!command.workingDirectory.isEmpty()) {
        script += "CDPATH= cd -- " + quotedForShell(plainPath(command.workingDirectory)) +
                  " 2>/dev/null || " + giveUp(noDirectoryWord);
    }
    // 2. The environment; what the shell itself has put into an empty one goes.
    if (command.clearsEnvironment)
        script += "unset PWD OLDPWD SHLVL _\n";
    for (auto variable = command.environment.cbegin(); variable != command.environment.cend();
         ++variable) {
        script += "export " + variable.key().toLatin1() + '=' +
                  quotedForShell(toNativeBytes(variable.value())) + '\n';
    }
    // 3. The program, which may also be the shell's own, as "echo".
    const QByteArray program = toNativeBytes(command.words.constFirst());
    const QByteArray quoted = quotedForShell(program);
    const QByteArray isThere = program.contains('/')
                                   ? "{ [ -x " + quoted + " ] && [ ! -d " + quoted + " ]; }"
                                   : "command -v -- " + quoted + " >/dev/null 2>&1";
    script += isThere + " || " + giveUp(noProgramWord);
    // 4. The process, which becomes the program.
    script += "printf '\\001tamrix:" + startedWord + "%s\\n' \"$$\"\n";
    script += "exec";
    for (const QString& word : command.words)
        script += ' ' + quotedForShell(toNativeBytes(word));
    return script + " </dev/null\n";
}

QByteArray endingScript(qint64 processGroup) {
    const QByteArray group = QByteArray::number(processGroup);
    return "kill -s TERM -- -" + group + "\nfor i in 1 2 3 4 5 6 7 8 9 10; do kill -s 0 -- -" +
           group + " 2>/dev/null || exit 0; sleep 0.1; done\nkill -s KILL -- -" + group + "\n";
}

Outcome<> ShellOutput::append(const char* bytes, int size) {
    m_output.append(bytes, size);
    if (hasStarted())
        return checkSize(m_output);
    const int begin = m_output.indexOf(mark);
    const int end = begin < 0 ? -1 : m_output.indexOf('\n', begin);
    if (end >= 0) {
        const QByteArray line = m_output.mid(begin + mark.size(), end - begin - mark.size());
        m_output.remove(0, end + 1);
        return readLine(line);
    }
    if (m_output.size() <= mostNoise)
        return {};
    return fail(FailureKind::Failed,
                QStringLiteral("the shell did not start '%1', but wrote: %2")
                    .arg(m_command.words.constFirst(), fromNativeBytes(m_output.left(200))));
}

Outcome<> ShellOutput::appendError(const char* bytes, int size) {
    m_errors.append(bytes, size);
    return checkSize(m_errors);
}

Outcome<> ShellOutput::checkSize(const QByteArray& output) const {
    if (output.size() <= mostOutput)
        return {};
    return fail(FailureKind::Failed,
                QStringLiteral("'%1' wrote more than %2 MB and was ended")
                    .arg(m_command.words.constFirst(), QString::number(mostOutput >> 20)));
}

Failure ShellOutput::neverStarted() const {
    const QString told = fromNativeBytes((m_errors.isEmpty() ? m_output : m_errors).left(500));
    return {FailureKind::Failed,
            QStringLiteral("the shell did not start '%1': %2")
                .arg(m_command.words.constFirst(),
                     told.isEmpty() ? QStringLiteral("it ended") : told.trimmed())};
}

Outcome<> ShellOutput::readLine(const QByteArray& line) {
    if (line == noDirectoryWord) {
        return fail(
            FailureKind::NotFound,
            QStringLiteral("there is no folder '%1' to work in").arg(m_command.workingDirectory));
    }
    if (line == noProgramWord) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("there is no program '%1'").arg(m_command.words.constFirst()));
    }
    bool isNumber = false;
    if (line.startsWith(startedWord))
        m_process = line.mid(startedWord.size()).toLongLong(&isNumber);
    // Such a group would be more than the program.
    if (isNumber && m_process > 1)
        return {};
    m_process = 0;
    return fail(FailureKind::Failed, QStringLiteral("the shell's answer is not understood: %1")
                                         .arg(fromNativeBytes(line.left(200))));
}

}  // namespace Tamrix
