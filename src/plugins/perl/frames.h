#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/testresult/lineinfo.h"
#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// The files behind Perl's code: their paths as results show them, and which of them are scripts.
/// Script thread only.
class SourceFiles {
public:
    /// `libraryFolders` are where Perl keeps its own and installed modules.
    explicit SourceFiles(const QStringList& libraryFolders);

    /// The path with links resolved; the null string for code that is in no file, such as a text
    /// that was evaluated.
    QString path(const char* codeFile);
    /// Whether the file is a script: in a file, and not of Perl's library.
    bool isScript(const char* codeFile);

    /// The name for the file in a #line directive, which has no way to write all characters.
    QByteArray codeFileOf(const QString& path);

private:
    struct Entry {
        QString path;
        bool isScript = false;
    };
    const Entry& entry(const char* codeFile);

    QStringList m_libraryFolders;
    QHash<QByteArray, Entry> m_entries;
};

/// A call of Perl code that is running, and the statement where it stands.
struct CodeFrame {
    const COP* statement = nullptr;
    /// Its code; null where Perl has only an `eval` of a text that is being compiled.
    CV* code = nullptr;
    /// Of its calls that are running, this one's number from 1.
    I32 depth = 1;
};

/// All calls, the innermost first. Blocks of `eval` are none of their own.
std::vector<CodeFrame> runningCode(pTHX);
/// Those that run scripts.
std::vector<CodeFrame> scriptFrames(pTHX_ SourceFiles& files);
/// Whether an `eval` or `try` of the script catches what dies now, above the given depth of
/// contexts of the innermost stack; -1 for all.
bool isCaughtByScript(pTHX);

/// Positions of those that run scripts; when none does, the innermost line in any file stands
/// alone.
std::vector<LineInfo> positionsOf(const std::vector<CodeFrame>& frames);

}  // namespace Tamrix::PerlPlugin
