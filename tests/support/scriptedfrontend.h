#pragma once

#include <QStringList>
#include <deque>
#include <functional>
#include <memory>
#include <variant>

#include "base/overloaded.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/frontend.h"

namespace Tamrix::Test {

// What a scripted front end commands.
using Resume = Debugger::Resume;
struct SetBreakPoint {
    QString file;
    int line = 0;
};
struct DeleteBreakPoint {
    QString file;
    int line = 0;
};
/// Anything else that is to be done while the script stands still.
using Look = std::function<void(Debugger&)>;
using DebuggerCommand = std::variant<Resume, SetBreakPoint, DeleteBreakPoint, Look>;

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

    bool performCommands(Debugger& debugger) override {
        while (!commands.empty()) {
            const DebuggerCommand command = commands.front();
            commands.pop_front();
            if (const auto* how = std::get_if<Resume>(&command)) {
                debugger.resume(*how);
                return true;
            }
            perform(debugger, command);
        }
        return false;
    }

    /// What was told since the last call, parts of it with "; " between them.
    QString take(const QString& separator = "; ") {
        const QString text = told.join(separator);
        told.clear();
        return text;
    }

    QStringList told;
    std::deque<DebuggerCommand> commands;

private:
    void perform(Debugger& debugger, const DebuggerCommand& command) {
        if (const auto* look = std::get_if<Look>(&command))
            (*look)(debugger);
        if (const auto* set = std::get_if<SetBreakPoint>(&command))
            tell(debugger.addBreakPoint(set->file, set->line));
        if (const auto* deletion = std::get_if<DeleteBreakPoint>(&command))
            tell(debugger.deleteBreakPoint(deletion->file, deletion->line));
    }
    void tell(const Outcome<Debugger::BreakPointPlace>& place) {
        told += !place ? place.error().text
                       : QStringLiteral("%1:%2%3").arg(place->file, QString::number(place->line),
                                                       place->isBuffered ? " buffered" : "");
    }
};

}  // namespace Tamrix::Test
