#pragma once

#include <QDir>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

class QTemporaryFile;

namespace Tamrix {

/// The files that a report takes along in a folder beside it: copies of attachments, and texts that
/// are too long for the report itself. They are named after their contents. A name therefore never
/// changes its meaning, and an earlier report in the same place stays right until it is replaced.
class ReportFiles {
public:
    /// What became of one file.
    struct Copy {
        /// Where the copy is, relative to the folder of the report; empty with a problem.
        QString path;
        /// Why there is no copy, ready for a person to read.
        QString problem;
    };

    /// `folder` is where the report is, absolute; it need not exist. The files go to `subfolder`.
    ReportFiles(const QString& folder, const QString& subfolder);

    /// Copies a file, once however often it is asked for. A source that can't be read is told in
    /// the copy's problem; not being able to write ends in errorText().
    Copy copy(const QString& source);

    /// Stores a text under a name that ends with `name`. Without a path and a problem when it could
    /// not be written, which ends in errorText().
    Copy store(const QString& text, const QString& name);

    /// The end of a copied text of at most 64 KiB. `*size` receives the size of the whole in bytes.
    QByteArray endOfText(const Copy& copy, qint64* size) const;

    /// All of a copied text; empty when it has more bytes than that.
    QByteArray text(const Copy& copy, qint64 mostBytes) const;

    /// How a page in the folder of the report refers to a file elsewhere: a relative URL.
    QString urlOf(const QString& path) const;

    /// The first failure to write; empty when there was none.
    QString errorText() const { return m_error; }

    /// Removes the copies that an earlier report in this folder left and this one does not use.
    void removeUnused();
    /// Removes the copies that were made here and did not exist before.
    void removeNew();

private:
    Copy makeCopy(const QString& source);
    /// Gives the file its name; without a path on failure.
    Copy keep(QTemporaryFile& file, const QString& name, const QString& what);
    /// Opens a file in the subfolder; false on failure.
    bool open(QTemporaryFile& file, const QString& what);
    /// Sets the error text; `what` begins it.
    void fail(const QString& what, const QString& reason);
    QDir directory() const;

    QString m_folder;
    QString m_subfolder;
    QMap<QString, Copy> m_copies;
    QSet<QString> m_usedNames;
    QStringList m_newNames;
    QString m_error;
};

}  // namespace Tamrix
