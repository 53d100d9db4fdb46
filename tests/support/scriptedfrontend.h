#pragma once

#include <QStringList>
#include <deque>
#include <memory>

#include "base/overloaded.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/frontend.h"

namespace Tamrix::Test {

/// A front end that keeps what it is told, and commands what a test has written down for it.
class ScriptedFrontEnd : public DebuggerFrontEnd {
public:
    /// Gives the debugger such a front end, which it owns.
    static ScriptedFrontEnd& install(Debugger& debugger) {
        auto frontEnd = std::make_unique<ScriptedFrontEnd>();
        ScriptedFrontEnd& installed = *frontEnd;
        debugger.setFrontEnd(std::move(frontEnd));
        return installed;
    }

    void stopped(const ScriptPosition& position, const StopReason& reason) override {
        told +=
            QString::number(position.line) +
            std::visit(
                Overloaded{
                    [](const LineReached&) { return QString(); },
                    [](const ObjectNotFound& object) {
                        return QStringLiteral(" no object %1: %2").arg(object.name, object.detail);
                    },
                    [](const ImageNotFound& image) {
                        return QStringLiteral(" no image %1 %2 in %3")
                            .arg(image.name, QString::number(image.target), image.screenshot);
                    },
                    [](const TextNotFound& text) {
                        return QStringLiteral(" no text in %1").arg(text.screenshot);
                    },
                    [](const StepMissing& step) {
                        return QStringLiteral(" no step %1").arg(QString::fromStdString(step.text));
                    },
                },
                reason);
    }

    void passed(const ScriptPosition& position) override {
        told += QStringLiteral("passed %1").arg(position.line);
    }

    void notify(const QString& key, const QString& value) override { told += key + "=" + value; }

    std::optional<DebuggerCommand> waitForCommand() override {
        if (commands.empty())
            return std::nullopt;
        const DebuggerCommand next = commands.front();
        commands.pop_front();
        return next;
    }

    void reply(const DebuggerCommand&, const Outcome<BreakPointReply>& answer) override {
        told += !answer ? answer.error().text
                        : QStringLiteral("%1:%2%3").arg(answer->file, QString::number(answer->line),
                                                        answer->isBuffered ? " buffered" : "");
    }

    /// What was told since the last call, parts of it with "; " between them.
    QString take(const QString& separator = "; ") {
        const QString text = told.join(separator);
        told.clear();
        return text;
    }

    QStringList told;
    std::deque<DebuggerCommand> commands;
};

}  // namespace Tamrix::Test
