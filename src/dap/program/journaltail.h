#pragma once

#include <poll.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <optional>
#include <variant>
#include <vector>

#include "dap/program/stopline.h"

namespace Tamrix::Dap {

/// A test case begins.
struct CaseBegun {
    QString name;
};

/// A test case has ended.
struct CaseEnded {};

/// A verdict or message of a script, or an error of it.
struct ResultTold {
    /// "Fail", "Log"
    QString kind;
    bool isFailure = false;
    QString message;
    QString detail;
    /// Nothing for a result without a line.
    std::optional<ScriptPlace> place;
};

/// What a script wrote.
struct TextWritten {
    QString text;
    bool isError = false;
};

using JournalEvent = std::variant<CaseBegun, CaseEnded, ResultTold, TextWritten>;

/// One line of a run's journal; nothing for what a debugger's user does not see.
std::optional<JournalEvent> readJournalLine(const QByteArray& line);

/// Reads a journal while the run writes it.
class JournalTail {
public:
    /// The file need not be there yet, but its folder is.
    explicit JournalTail(const QString& path);
    ~JournalTail();
    JournalTail(const JournalTail&) = delete;
    JournalTail& operator=(const JournalTail&) = delete;

    /// What whole lines have come since the last call. Nothing as long as there is no file.
    std::vector<JournalEvent> take();
    /// Adds what poll() is to watch for more lines.
    void watch(std::vector<pollfd>* watched) const;

private:
    QFile m_file;
    QByteArray m_buffer;
    /// Tells of changes in the folder; -1 when the system has none to give.
    int m_changes;
};

}  // namespace Tamrix::Dap
