#pragma once

#include <gtest/gtest.h>

#include <QStringList>
#include <memory>
#include <utility>

#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/lineprotocol/lineprotocol.h"

namespace Tamrix::Test {

/// Drives a debugger with the line protocol and writes down what it reads and prints:
///
///     > eval 1
///     out|TDBG:eval1
///     err|TDBG:...
///
/// Standard output and error are captured as long as it lives. When the commands have ended, the
/// script goes on.
class ProtocolDialogue {
public:
    ProtocolDialogue(Debugger& debugger, ProtocolDialect dialect, bool showsPrompts = false) {
        ProtocolSurroundings surroundings;
        surroundings.input = std::make_unique<Input>(*this, showsPrompts);
        debugger.setFrontEnd(std::make_unique<LineProtocol>(dialect, std::move(surroundings)));
        capture();
    }
    ~ProtocolDialogue() { takeOutput(); }
    ProtocolDialogue(const ProtocolDialogue&) = delete;
    ProtocolDialogue& operator=(const ProtocolDialogue&) = delete;

    QStringList commands;

    /// Something beside the dialogue.
    void note(const QString& text) {
        collect();
        m_text += "-- " + text + '\n';
    }
    /// What was said since the last call.
    QString take() {
        collect();
        return std::exchange(m_text, QString());
    }

private:
    class Input : public CommandInput {
    public:
        Input(ProtocolDialogue& dialogue, bool showsPrompts)
            : m_dialogue(dialogue), m_showsPrompts(showsPrompts) {}
        Line readLine(const std::string& prompt) override {
            m_dialogue.collect();
            if (m_dialogue.commands.isEmpty())
                return {End::Interrupted, {}};
            if (m_showsPrompts)
                m_dialogue.append("prompt|", prompt);
            const QString command = m_dialogue.commands.takeFirst();
            m_dialogue.m_text += "> " + command + '\n';
            return {End::None, command.toStdString()};
        }

    private:
        ProtocolDialogue& m_dialogue;
        bool m_showsPrompts;
    };

    static void capture() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
    }
    static std::pair<std::string, std::string> takeOutput() {
        std::string output = testing::internal::GetCapturedStdout();
        return {std::move(output), testing::internal::GetCapturedStderr()};
    }
    void collect() {
        const auto [output, errors] = takeOutput();
        append("out|", output);
        append("err|", errors);
        capture();
    }
    void append(const QString& mark, const std::string& text) {
        if (text.empty())
            return;
        QString lines = QString::fromStdString(text);
        if (lines.endsWith('\n'))
            lines.chop(1);
        for (const QString& line : lines.split('\n'))
            m_text += mark + line + '\n';
    }

    QString m_text;
};

}  // namespace Tamrix::Test
