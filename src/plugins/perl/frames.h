#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

#include "interpreter/language/sourcefiles.h"
#include "platform/testresult/lineinfo.h"
#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// Whether it is the name of a file, and not what Perl writes for code that is in none.
bool isPerlFile(const QByteArray& name);
/// The name for the file in a #line directive, which has no way to write all characters.
QByteArray codeFileOf(SourceFiles& files, const QString& path);

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
