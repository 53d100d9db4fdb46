#include "plugins/perl/frames.h"

#include <QCryptographicHash>

#include "plugins/perl/caseinterpreter.h"

namespace Tamrix::PerlPlugin {

bool isPerlFile(const QByteArray& name) {
    return SourceFiles::isUnbracketed(name) && name != "-e";
}

QByteArray codeFileOf(SourceFiles& files, const QString& path) {
    const QByteArray name = path.toUtf8();
    if (!name.contains('"') && !name.contains('\n') && !name.contains('\r'))
        return name;
    const QByteArray alias =
        "tamrix-file-" + QCryptographicHash::hash(name, QCryptographicHash::Sha1).toHex();
    files.addAlias(alias, path);
    return alias;
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
        if (files.isScript(file))
            positions.push_back(position);
    }
    if (positions.empty() && innermost.isValid())
        positions.push_back(innermost);
    return positions;
}

}  // namespace Tamrix::PerlPlugin
