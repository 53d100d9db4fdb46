#include "plugins/perl/frames.h"

#include <algorithm>

#include "interpreter/bridge/debugger.h"
#include "plugins/perl/caseinterpreter.h"

namespace Tamrix::PerlPlugin {

namespace {

/// What stands for a file whose name a directive can't hold.
constexpr const char* aliasStart = "tamrix-file-";

bool isNoFile(const QByteArray& name) {
    return name.isEmpty() || name.startsWith("(eval ") || name.startsWith("<") || name == "-e" ||
           name.startsWith("(");
}

/// A runaway recursion has thousands of lines; the innermost ones tell enough.
constexpr std::size_t maximumStackLines = 100;

}  // namespace

SourceFiles::SourceFiles(const QStringList& libraryFolders) {
    for (const QString& folder : libraryFolders)
        m_libraryFolders.append(Debugger::sanitizedFilePath(folder) + '/');
}

QString SourceFiles::path(const char* codeFile) {
    return entry(codeFile).path;
}

bool SourceFiles::isScript(const char* codeFile) {
    return entry(codeFile).isScript;
}

const SourceFiles::Entry& SourceFiles::entry(const char* codeFile) {
    const QByteArray name = QByteArray::fromRawData(codeFile, codeFile ? qstrlen(codeFile) : 0);
    const auto known = m_entries.constFind(name);
    if (known != m_entries.constEnd())
        return *known;
    Entry made;
    if (!isNoFile(name)) {
        made.path = Debugger::sanitizedFilePath(QString::fromUtf8(name));
        made.isScript =
            std::none_of(m_libraryFolders.begin(), m_libraryFolders.end(),
                         [&](const QString& folder) { return made.path.startsWith(folder); });
    }
    return *m_entries.insert(QByteArray(name.constData(), name.size()), made);
}

QByteArray SourceFiles::codeFileOf(const QString& path) {
    QByteArray name = path.toUtf8();
    if (!name.contains('"') && !name.contains('\n') && !name.contains('\r'))
        return name;
    name = aliasStart + QByteArray::number(m_entries.size());
    m_entries.insert(name, {Debugger::sanitizedFilePath(path), true});
    return name;
}

std::vector<CodeFrame> runningCode(pTHX) {
    std::vector<CodeFrame> frames;
    const COP* statement = PL_curcop;
    for (const PERL_SI* stack = PL_curstackinfo; stack; stack = stack->si_prev) {
        for (I32 index = stack->si_cxix; index >= 0; --index) {
            const PERL_CONTEXT* const context = &stack->si_cxstack[index];
            switch (CxTYPE(context)) {
                case CXt_SUB:
                    if ((context->cx_type & CXp_SUB_RE_FAKE) != 0)
                        continue;
                    frames.push_back(
                        {statement, context->blk_sub.cv, context->blk_sub.olddepth + 1});
                    break;
                case CXt_FORMAT:
                    frames.push_back({statement, context->blk_format.cv, 1});
                    break;
                case CXt_EVAL:
                    if (CxTRYBLOCK(context) || CxTRY(context))
                        continue;
                    frames.push_back({statement, context->blk_eval.cv, 1});
                    break;
                default:
                    continue;
            }
            statement = context->blk_oldcop;
        }
    }
    return frames;
}

std::vector<CodeFrame> scriptFrames(pTHX_ SourceFiles& files) {
    std::vector<CodeFrame> frames = runningCode(aTHX);
    std::erase_if(frames, [&files](const CodeFrame& frame) {
        return !files.isScript(CopFILE(frame.statement));
    });
    return frames;
}

bool isCaughtByScript(pTHX) {
    for (const PERL_SI* stack = PL_curstackinfo; stack; stack = stack->si_prev) {
        for (I32 index = stack->si_cxix; index >= 0; --index) {
            const PERL_CONTEXT* const context = &stack->si_cxstack[index];
            // A native function that calls code has no place where Perl goes on.
            if (CxTYPE(context) == CXt_EVAL && context->blk_eval.retop &&
                CxOLD_OP_TYPE(context) != OP_REQUIRE)
                return true;
        }
    }
    return false;
}

std::vector<LineInfo> positionsOf(const std::vector<CodeFrame>& frames) {
    CaseInterpreter* const interpreter = CaseInterpreter::onScriptThread();
    std::vector<LineInfo> positions;
    if (!interpreter)
        return positions;
    SourceFiles& files = interpreter->files();
    LineInfo innermost;
    for (const CodeFrame& frame : frames) {
        const char* const file = CopFILE(frame.statement);
        const LineInfo position(files.path(file), static_cast<int>(CopLINE(frame.statement)));
        if (!innermost.isValid())
            innermost = position;
        if (files.isScript(file) && positions.size() < maximumStackLines)
            positions.push_back(position);
    }
    if (positions.empty() && innermost.isValid())
        positions.push_back(innermost);
    return positions;
}

}  // namespace Tamrix::PerlPlugin
