#pragma once

#include <QFileInfo>
#include <QStringList>
#include <map>
#include <memory>
#include <vector>

#include "interpreter/language/languagedebugger.h"

namespace Tamrix::Test {

/// The debugger of a language whose frames are what a test says.
class FramesDebugger final : public LanguageDebugger {
public:
    FramesDebugger() : LanguageDebugger(nullptr) {}

    /// A call in the file: the innermost frame from now on.
    void enter(const QString& file, int line) {
        running.insert(running.begin(), ScriptFrame{line, file, line, -1, -1});
    }
    void leave() { running.erase(running.begin()); }
    /// The innermost frame comes to a line.
    void reach(int line) {
        running.front().line = line;
        lineReached(sourceIdOf(running.front().file), line);
    }
    /// "file:line" of all frames, the innermost first.
    QStringList places() {
        QStringList texts;
        for (const ScriptFrame& frame : frames())
            texts += QFileInfo(frame.file).fileName() + ':' + QString::number(frame.line);
        return texts;
    }

    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override {
        std::vector<ValueTexts::Part> parts;
        for (const auto& [name, value] : variablesOfFiles[frame.file])
            parts.push_back({name, value});
        return parts;
    }

    std::vector<ScriptFrame> running;
    std::map<QString, ScriptArgument::Map> variablesOfFiles;
    int silences = 0;
    int soonStops = 0;

protected:
    void stopSoon() override { ++soonStops; }
    std::vector<ScriptFrame> runningFrames() override { return running; }
    std::unique_ptr<ValueTexts> makeValueTexts() override { return nullptr; }
    void enterSilence() override { ++silences; }
    void leaveSilence() override { --silences; }
};

}  // namespace Tamrix::Test
