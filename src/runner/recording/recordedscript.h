#pragma once

#include <QFile>
#include <QString>
#include <functional>
#include <memory>

#include "base/outcome.h"
#include "interpreter/bridge/eventrecorder.h"

namespace Tamrix {

/// A script that grows while something is recorded. Each line is told, and in the file, when it is
/// written, with the script's end behind it: whatever ends the recording leaves a whole script.
class RecordedScript {
public:
    /// Told of each text as it is written.
    using Tell = std::function<void(const QString& text)>;

    RecordedScript(std::unique_ptr<EventRecorder> language, Tell tell);

    /// Whether the file can be created, as far as that can be told without making anything: for
    /// what is wrong before there is something to write.
    static Outcome<> check(const QString& path);
    /// Creates the file, with its folder; without this the script is only told. Fails when there
    /// is such a file already, which stays as it is.
    Outcome<> create(const QString& path);
    /// Writes the head of the script.
    void begin();
    void add(const ScriptAction& action);
    void end();
    /// Fails when a line could not be written, with the first reason.
    Outcome<> result() const { return m_result; }

private:
    void write(const QString& text);

    std::unique_ptr<EventRecorder> m_language;
    Tell m_tell;
    QFile m_file;
    /// Where the script's end stands in the file.
    qint64 m_end = 0;
    Outcome<> m_result;
};

/// What writes scripts in a language, "python" or its suffix "py", with symbolic names as variables
/// of a module where that is not empty. Fails for an unknown language and for one that has no
/// plug-in here or writes no scripts.
Outcome<std::unique_ptr<EventRecorder>> scriptWriter(const QString& languageName,
                                                     const QString& namesModule = QString());
/// The suffix of its scripts' files; empty for an unknown language.
QString scriptSuffix(const QString& languageName);

}  // namespace Tamrix
