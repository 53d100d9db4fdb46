#include "support/simulatedscript.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QUrl>
#include <algorithm>
#include <csignal>
#include <utility>

namespace Tamrix::Test {

namespace {

class SimulatedProgram : public Dap::Program {
public:
    SimulatedProgram(SimulatedScript& script, const Dap::ProgramStart& start)
        : m_script(script),
          m_journal(start.arguments.value(start.arguments.indexOf("--result-dir") + 1) +
                    "/journal.jsonl") {
        EXPECT_TRUE(
            m_journal.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered));
        m_journal.write("{\"kind\":\"caseStart\",\"message\":\"a_case\"}\n");
        // A debugged script stops at its first line.
        m_mode = Mode::Step;
        goOn();
    }

    std::vector<Piece> receive() override {
        // A script that is asked to stop does so at its next line.
        if (std::exchange(m_isInterrupted, false) && !m_isStopped) {
            m_mode = Mode::Step;
            goOn();
        }
        return std::exchange(m_pieces, {});
    }

    void write(const QByteArray& bytes) override {
        for (const QByteArray& line : bytes.split('\n')) {
            if (!line.isEmpty())
                perform(QString::fromUtf8(line));
        }
    }

    bool hasTakenInput() override { return true; }

    void signal(int number) override {
        m_script.signalNumbers.append(number);
        if (number == SIGINT)
            m_isInterrupted = true;
        else
            m_hasEnded = true;
    }

    std::optional<int> exitCode() override {
        if (!m_hasEnded || !m_pieces.empty())
            return std::nullopt;
        return m_script.exitCode;
    }

    void watch(std::vector<pollfd>*) const override {}

private:
    enum class Mode { Next, Step, Run };

    const SimulatedScript::Line& current() const { return m_script.lines[m_position - 1]; }

    void print(const QByteArray& text) { m_pieces.push_back({"TDBG:" + text + '\n', false}); }
    void fail(const QByteArray& text) { m_pieces.push_back({"TDBG:" + text + '\n', true}); }

    bool isLoaded(const QString& file) const {
        return !m_script.lateFiles.contains(file) ||
               std::any_of(m_script.lines.begin(),
                           m_script.lines.begin() + static_cast<long>(m_position),
                           [&](const auto& line) { return line.file == file; });
    }

    /// To the next line at which the mode or a break point stops, or to the end. A script that
    /// never ends by itself waits at a line without number.
    void goOn() {
        m_isStopped = false;
        while (m_position < m_script.lines.size()) {
            const SimulatedScript::Line& line = m_script.lines[m_position];
            if (line.number < 0 && !m_isInterrupted && m_mode != Mode::Step)
                return;
            ++m_position;
            m_journal.write(line.journal);
            if (!line.output.isEmpty())
                m_pieces.push_back({line.output, false});
            const bool isStop = !line.stop.isEmpty() || m_mode == Mode::Step ||
                                (m_mode == Mode::Next && line.callers.size() <= m_depth) ||
                                m_breakPoints.contains({line.file, line.number});
            if (line.number < 0 || !isStop)
                continue;
            m_isStopped = true;
            print(line.stop.isEmpty() ? QStringLiteral("@line %1, column -1, %2:")
                                            .arg(QString::number(line.number), line.file)
                                            .toUtf8()
                                      : line.stop);
            return;
        }
        m_journal.write("{\"kind\":\"caseEnd\"}\n");
        m_hasEnded = true;
    }

    void resume(Mode mode, int depth = 0) {
        m_mode = mode;
        m_depth = depth;
        goOn();
    }

    void perform(const QString& command) {
        EXPECT_TRUE(m_isStopped) << "a command to a running script: " << qPrintable(command);
        m_script.commands.append(command);
        const QString word = command.section(' ', 0, 0);
        const QString argument = command.section(' ', 1);
        const int depth = current().callers.size();
        if (word == "next")
            resume(Mode::Next, depth);
        else if (word == "step")
            resume(Mode::Step);
        else if (word == "return")
            resume(Mode::Next, std::max(depth - 1, 0));
        else if (word == "continue")
            resume(Mode::Run);
        else if (word == "quit")
            m_hasEnded = true;
        else if (word == "break" || word == "delete")
            changeBreakPoint(word, argument);
        else if (word == "eval")
            answerEvaluation(QUrl::fromPercentEncoding(argument.toUtf8()));
        else if (word == "backtrace")
            for (const QString& caller : current().callers)
                print(caller.toUtf8());
        else if (word == "breakOnMissingStep")
            print("breakOnMissingStep ok: " + QByteArray(argument == "true" ? "1" : "0"));
        else if (command == "print file")
            print("@file " + current().file.toUtf8());
        else if (command == "print line")
            print("@line " + QByteArray::number(current().number));
        else if (command == "print evaluation")
            print(m_hasFailed ? "@evaluation failed" : "@evaluation ok");
        else if (command.startsWith("print variables"))
            list(command.section(' ', 2));
        else if (word == "getInterpreterStateFor")
            print("getInterpreterStateFor ok: " + m_script.searchState + '\n');
        else if (word == "setInterpreterStateFor")
            print("setInterpreterStateFor " + (m_script.searchStateError.isEmpty()
                                                   ? "ok:"
                                                   : "error: " + m_script.searchStateError));
        else if (word != "enableObjectNotFoundDebugging" && word != "enableImageNotFoundDebugging")
            fail("Unknown command: " + command.toUtf8());
    }

    void changeBreakPoint(const QString& word, const QString& argument) {
        const QString file = argument.section(':', 0, -2);
        const int line = argument.section(':', -1).toInt();
        const QByteArray place = argument.toUtf8();
        if (word == "break") {
            if (line < 0)
                return fail("break error: invalid line number");
            m_breakPoints.insert({file, line});
            print((isLoaded(file) ? "break ok: Set break point "
                                  : "break ok: Set buffered break point ") +
                  place);
        } else if (!isLoaded(file)) {
            fail("delete error: unknown source file " + file.toUtf8());
        } else {
            m_breakPoints.erase({file, line});
            print("delete ok: Deleted break point " + place);
        }
    }

    void answerEvaluation(const QString& code) {
        const QString result = m_script.evaluate ? m_script.evaluate(code, current().number) : code;
        m_hasFailed = result.startsWith(SimulatedScript::errorPrefix);
        print("eval" + QUrl::toPercentEncoding(result));
    }

    void list(const QString& path) {
        const auto listing = m_script.listings.find(path);
        print("symb" + (path.isEmpty() ? QByteArray() : '.' + path.toUtf8()) + ":{" +
              (listing == m_script.listings.end() ? QByteArray() : listing->second) + '}');
    }

    SimulatedScript& m_script;
    QFile m_journal;
    std::vector<Piece> m_pieces;
    std::set<std::pair<QString, int>> m_breakPoints;
    Mode m_mode = Mode::Run;
    int m_depth = 0;
    /// How many lines the script has reached.
    std::size_t m_position = 0;
    bool m_isStopped = false;
    bool m_isInterrupted = false;
    /// What was evaluated last.
    bool m_hasFailed = false;
    bool m_hasEnded = false;
};

}  // namespace

Dap::ProgramStarter SimulatedScript::starter() {
    return [this](const Dap::ProgramStart& start) -> Outcome<std::unique_ptr<Dap::Program>> {
        starts.push_back(start);
        return std::unique_ptr<Dap::Program>(std::make_unique<SimulatedProgram>(*this, start));
    };
}

}  // namespace Tamrix::Test
