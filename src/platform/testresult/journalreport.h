#pragma once

#include <sys/types.h>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// The journal of a run: JSON Lines, a header and then one object for each entry. An entry is
/// handed to the operating system before add() returns, so that a run that is killed at any moment
/// loses none of them; JournalReader makes other reports of the file.
///
/// A write error ends the journal, and so does a file that somebody removes or replaces: nothing is
/// written behind a line that may be broken, and errorText() tells the cause. Texts of a line that
/// would be longer than the reader takes are shortened with a visible mark; script output is spread
/// over several entries instead. Files in the journal's folder stand in it by relative paths, so
/// that both can be moved together.
class TAMRIX_EXPORT JournalReport : public ReportGenerator {
public:
    /// Replaces the file at `path` and writes the header; a relative path counts from the current
    /// working directory. Missing folders are created.
    explicit JournalReport(const QString& path);
    ~JournalReport() override;
    JournalReport(const JournalReport&) = delete;
    JournalReport& operator=(const JournalReport&) = delete;

    void add(const ReportEntry& entry) override;
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    /// Adds an entry whose paths are as the file has them.
    void addMovable(const ReportEntry& entry);
    void addLongEntry(const ReportEntry& entry);
    void addLongOutput(const QDateTime& time, const OutputWritten& output);
    void write(const QByteArray& line);
    /// Whether the path leads to another file by now, or to none.
    bool hasVanished() const;
    void fail(const QString& reason);
    void close();

    QString m_path;
    QString m_folder;
    int m_descriptor = -1;
    bool m_isRegularFile = false;
    dev_t m_device = 0;
    ino_t m_inode = 0;
    QString m_error;
};

}  // namespace Tamrix
