#pragma once

#include <QString>

#include "base/export.h"

class QIODevice;

namespace Tamrix {

class ReportGenerator;

/// Reads a journal that JournalReport wrote and replays it into another report generator. The file
/// may come from anywhere: whatever it holds, reading ends in an error text at worst.
///
/// A journal whose run was killed ends inside a line, or without the ends of its suite and case.
/// Both are no errors: the generators show the case as incomplete.
class TAMRIX_EXPORT JournalReader {
public:
    /// `generator` is not owned.
    explicit JournalReader(ReportGenerator* generator) : m_generator(generator) {}

    /// Adds every entry of the file to the generator, without calling its finish(). Relative paths
    /// count from the journal's folder and become absolute. False with
    /// errorText() set, which names file and line, when the file can't be read, is no journal,
    /// has another version, or holds a line that is no entry; the entries before it were added.
    bool replay(const QString& path);
    /// The same for an open device, not owned; `name` stands for it in errors. Paths stay.
    bool replay(QIODevice* device, const QString& name);

    /// Whether the last replay ended inside a line.
    bool isCut() const { return m_isCut; }
    QString errorText() const { return m_error; }

private:
    ReportGenerator* m_generator;
    /// From which paths count; empty to leave them.
    QString m_folder;
    bool m_isCut = false;
    QString m_error;
};

}  // namespace Tamrix
