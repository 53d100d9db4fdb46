#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

namespace Tamrix {

/// The files that an HTML report takes along: copies of attachments in the folder "attachments"
/// of the report, named after their contents. A name therefore never changes its meaning, and an
/// earlier report in the same folder stays right until its page is replaced.
class HtmlFiles {
public:
    /// What became of one file.
    struct Copy {
        /// Where the copy is, relative to the report's folder; empty with a problem.
        QString path;
        /// Why there is no copy, ready for a person to read.
        QString problem;
    };

    /// `folder` is the report's, absolute; it need not exist.
    explicit HtmlFiles(const QString& folder);

    /// Copies a file, once however often it is asked for. A source that can't be read is told in
    /// the copy's problem; not being able to write ends in errorText().
    Copy copy(const QString& source);

    /// The end of a copied text of at most 64 KiB. `*size` receives the size of the whole in bytes.
    QByteArray endOfText(const Copy& copy, qint64* size) const;

    /// The first failure to write; empty when there was none.
    QString errorText() const { return m_error; }

    /// Removes the copies that an earlier report in this folder left and this one does not use.
    void removeUnused();
    /// Removes the copies that were made here and did not exist before.
    void removeNew();

private:
    Copy makeCopy(const QString& source);

    QString m_folder;
    QMap<QString, Copy> m_copies;
    QSet<QString> m_usedNames;
    QStringList m_newNames;
    QString m_error;
};

}  // namespace Tamrix
