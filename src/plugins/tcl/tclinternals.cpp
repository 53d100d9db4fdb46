#include "plugins/tcl/tclinternals.h"

#include <tclInt.h>

#include <tclCompile.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <string_view>

#include "plugins/tcl/conversion.h"

static_assert(TCL_MAJOR_VERSION == 8 && TCL_MINOR_VERSION == 6,
              "how the running commands are kept is that of Tcl 8.6");

namespace Tamrix::TclPlugin {

namespace {

/// Reads the table that tells which code belongs to which command: a byte, or a mark and four.
class NumberReader {
public:
    explicit NumberReader(const unsigned char* next) : m_next(next) {}

    int take() {
        constexpr unsigned char longMark = 0xFF;
        if (*m_next != longMark)
            return static_cast<signed char>(*m_next++);
        const int number = TclGetInt4AtPtr(m_next + 1);
        m_next += 5;
        return number;
    }

private:
    const unsigned char* m_next;
};

/// A command in the source of compiled code.
struct SourceRange {
    int begin = -1;
    int length = 0;
};

/// The innermost command to which the instruction belongs at which the code stands.
std::optional<SourceRange> runningRange(const ByteCode& code, const char* instruction) {
    const auto place = reinterpret_cast<const unsigned char*>(instruction) - code.codeStart;
    if (place < 0 || place >= code.numCodeBytes)
        return std::nullopt;
    NumberReader codeDeltas(code.codeDeltaStart);
    NumberReader codeLengths(code.codeLengthStart);
    NumberReader sourceDeltas(code.srcDeltaStart);
    NumberReader sourceLengths(code.srcLengthStart);
    SourceRange best;
    int begin = 0;
    int source = 0;
    std::ptrdiff_t bestDistance = INT_MAX;
    for (int index = 0; index < code.numCommands; ++index) {
        begin += codeDeltas.take();
        const int length = codeLengths.take();
        source += sourceDeltas.take();
        const int sourceLength = sourceLengths.take();
        if (begin > place)
            break;
        if (place < begin + length && place - begin <= bestDistance) {
            bestDistance = place - begin;
            best = {source, sourceLength};
        }
    }
    return best.begin < 0 ? std::nullopt : std::optional(best);
}

const ByteCode* codeOf(const CmdFrame& frame) {
    const bool isCompiled =
        frame.type == TCL_LOCATION_BC || frame.type == TCL_LOCATION_PREBC;
    return isCompiled ? static_cast<const ByteCode*>(frame.data.tebc.codePtr) : nullptr;
}

/// The lines of the commands in compiled code; null when they are not known.
const ExtCmdLoc* linesOf(const Interp& interp, const ByteCode& code) {
    const Tcl_HashEntry* const entry =
        Tcl_FindHashEntry(interp.lineBCPtr, reinterpret_cast<const char*>(&code));
    return entry ? static_cast<const ExtCmdLoc*>(Tcl_GetHashValue(entry)) : nullptr;
}

/// A place in a file.
struct Place {
    Tcl_Obj* path;
    int line;
};

std::optional<Place> placeInCode(const Interp& interp, const CmdFrame& frame) {
    const ByteCode& code = *codeOf(frame);
    const ExtCmdLoc* const lines = linesOf(interp, code);
    const std::optional<SourceRange> range = runningRange(code, frame.data.tebc.pc);
    if (!lines || lines->type != TCL_LOCATION_SOURCE || !range)
        return std::nullopt;
    const ECL* const begin = lines->loc;
    const ECL* const end = begin + lines->nuloc;
    const ECL* const found = std::find_if(
        begin, end, [&](const ECL& each) { return each.srcOffset == range->begin; });
    if (found == end || found->nline == 0)
        return std::nullopt;
    return Place{lines->path, found->line[0]};
}

std::optional<Place> placeOf(const Interp& interp, const CmdFrame& frame) {
    if (codeOf(frame))
        return placeInCode(interp, frame);
    if (frame.type != TCL_LOCATION_SOURCE || !frame.line || frame.nline == 0)
        return std::nullopt;
    return Place{frame.data.eval.path, frame.line[0]};
}

/// The place of the command that has just failed: it knows its line in the source of its code, and
/// not always the instruction.
std::optional<Place> placeOfError(const Interp& interp, const CmdFrame& frame) {
    const int line = interp.errorLine;
    if (frame.type == TCL_LOCATION_SOURCE)
        return Place{frame.data.eval.path, line};
    const ByteCode* const code = codeOf(frame);
    const ExtCmdLoc* const lines = code ? linesOf(interp, *code) : nullptr;
    if (!lines || lines->type != TCL_LOCATION_SOURCE || lines->nuloc == 0 ||
        lines->loc[0].nline == 0)
        return std::nullopt;
    const ECL& first = lines->loc[0];
    const auto before = std::count(code->source, code->source + first.srcOffset, '\n');
    return Place{lines->path, first.line[0] - static_cast<int>(before) + line - 1};
}

std::vector<TclFrame> framesOf(Tcl_Interp* interp, bool isAtError) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    std::vector<TclFrame> found;
    const CallFrame* level = nullptr;
    bool isLevelFound = false;
    for (const CmdFrame* frame = own.cmdFramePtr; frame; frame = frame->nextPtr) {
        const bool isFailed = isAtError && frame == own.cmdFramePtr;
        if (frame->framePtr != level)
            isLevelFound = false;
        level = frame->framePtr;
        if (isLevelFound)
            continue;
        const std::optional<Place> place =
            isFailed ? placeOfError(own, *frame) : placeOf(own, *frame);
        if (!place || !place->path)
            continue;
        isLevelFound = true;
        found.push_back({level ? static_cast<int>(level->level) : 0, textOf(place->path),
                         place->line});
    }
    return found;
}

}  // namespace

std::vector<TclFrame> runningFrames(Tcl_Interp* interp) {
    return framesOf(interp, false);
}

std::vector<TclFrame> framesAtError(Tcl_Interp* interp) {
    return framesOf(interp, true);
}

std::vector<QByteArray> runningCommands(Tcl_Interp* interp) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    std::vector<QByteArray> commands;
    for (const CmdFrame* frame = own.cmdFramePtr; frame; frame = frame->nextPtr) {
        QByteArray source;
        if (const ByteCode* const code = codeOf(*frame)) {
            if (const auto range = runningRange(*code, frame->data.tebc.pc))
                source = QByteArray(code->source + range->begin, range->length);
        } else if (frame->cmdObj) {
            source = textOf(frame->cmdObj).toUtf8();
        } else if (frame->cmd && frame->len > 0) {
            source = QByteArray(frame->cmd, frame->len);
        }
        commands.push_back(source);
    }
    return commands;
}

int evaluateFile(Tcl_Interp* interp, const QByteArray& text, const QString& path) {
    Interp& own = *reinterpret_cast<Interp*>(interp);
    const TclRef file = toTcl(path);
    // As `source` does it.
    struct Restore {
        Interp& interp;
        Tcl_Obj* before;
        ~Restore() { interp.scriptFile = before; }
    } const restore{own, own.scriptFile};
    own.scriptFile = file.get();
    own.evalFlags |= TCL_EVAL_FILE;
    return Tcl_EvalEx(interp, text.constData(), text.size(), TCL_EVAL_GLOBAL);
}

TclFrame definitionOf(Tcl_Interp* interp, const char* procedure) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    const Proc* const proc = TclFindProc(reinterpret_cast<Interp*>(interp), procedure);
    const Tcl_HashEntry* const entry =
        proc ? Tcl_FindHashEntry(own.linePBodyPtr, reinterpret_cast<const char*>(proc)) : nullptr;
    const auto* const body = entry ? static_cast<const CmdFrame*>(Tcl_GetHashValue(entry)) : nullptr;
    if (!body || body->type != TCL_LOCATION_SOURCE || !body->line || !body->data.eval.path)
        return {};
    return {0, textOf(body->data.eval.path), body->line[0]};
}

bool isProcedure(Tcl_Interp* interp, const char* name) {
    return TclFindProc(reinterpret_cast<Interp*>(interp), name) != nullptr;
}

bool isMadeAsList(Tcl_Obj* list) {
    const auto* const own = static_cast<const List*>(list->internalRep.twoPtrValue.ptr1);
    return !list->bytes || own->canonicalFlag != 0;
}

}  // namespace Tamrix::TclPlugin
