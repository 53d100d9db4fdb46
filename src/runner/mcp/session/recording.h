#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <vector>

#include "base/outcome.h"
#include "interpreter/bridge/eventrecorder.h"

namespace Tamrix::Mcp {

/// The script of what a client has done to a program, from its start on. Once it has a file, each
/// further line is written there at once. Script thread only.
class Recording {
public:
    Recording();
    ~Recording();

    /// Begins anew; what was written stays in its file.
    void restart();

    /// From now on no action has the password as a value: it asks the run for that of the key.
    void addPassword(const QString& password, const QString& key);
    bool isPassword(const QString& text) const { return m_passwords.contains(text); }
    /// Whether a text, or a value in the name of an object, is a password, or has one in it that is
    /// not there by chance.
    bool holdsPassword(const QString& text) const;

    /// Adds an action. Returns the lines that do the same in a script, without indentation and
    /// without a line feed at the end; a failure when they can't be written to the file.
    Outcome<QString> add(const ScriptAction& action);
    /// The lines alone.
    QString linesOf(const ScriptAction& action);

    /// Writes all to the script of a test case, whose folders are made, and goes on with it. The
    /// language is a name or a suffix. A script that is there, and is not from here, is refused.
    Outcome<> writeTo(const QString& suite, const QString& testCase, const QString& language);
    /// The script's absolute path; empty as long as there is none.
    QString file() const { return m_file; }
    int size() const { return static_cast<int>(m_actions.size()); }

private:
    /// Loads the language's writer.
    Outcome<> useLanguage(const QString& language);
    Outcome<> write() const;
    ActionValue withoutPassword(const ActionValue& value) const;
    ScriptAction withoutPasswords(ScriptAction action) const;

    std::unique_ptr<EventRecorder> m_writer;
    QString m_suffix;
    std::vector<ScriptAction> m_actions;
    QString m_file;
    /// The keys of passwords.
    QHash<QString, QString> m_passwords;
    /// The files that were written since this was made.
    QStringList m_ownFiles;
};

}  // namespace Tamrix::Mcp
