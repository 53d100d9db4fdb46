#include "plugins/tcl/tclinternals.h"

#include <tclInt.h>

#include <tclCompile.h>

#include <QScopedValueRollback>
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
    const bool isCompiled = frame.type == TCL_LOCATION_BC || frame.type == TCL_LOCATION_PREBC;
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
    const ECL* const found =
        std::find_if(begin, end, [&](const ECL& each) { return each.srcOffset == range->begin; });
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

/// The beginning of a command, which tells it from others of its code.
const char* commandOf(const CmdFrame& frame) {
    const ByteCode* const code = codeOf(frame);
    if (!code)
        return frame.cmd;
    const std::optional<SourceRange> range = runningRange(*code, frame.data.tebc.pc);
    return range ? code->source + range->begin : nullptr;
}

/// Whether a line of the source of compiled code, counted from 1, has the text in it.
bool hasInLine(const ByteCode& code, int line, std::string_view text) {
    std::string_view source(code.source, static_cast<std::size_t>(code.numSrcBytes));
    for (int count = 1; count < line; ++count) {
        const std::size_t end = source.find('\n');
        if (end == std::string_view::npos)
            return false;
        source.remove_prefix(end + 1);
    }
    return source.substr(0, source.find('\n')).find(text) != std::string_view::npos;
}

/// The place of a line in the source of compiled code.
std::optional<Place> placeOfLine(const ExtCmdLoc& lines, const ByteCode& code, int line) {
    if (lines.type != TCL_LOCATION_SOURCE || lines.nuloc == 0 || lines.loc[0].nline == 0)
        return std::nullopt;
    const ECL& first = lines.loc[0];
    const auto before = std::count(code.source, code.source + first.srcOffset, '\n');
    return Place{lines.path, first.line[0] - static_cast<int>(before) + line - 1};
}

/// The place of a command that has just failed in compiled code. Of the running code that has a
/// frame only while it calls something, so it is looked for: code that runs, with the command at
/// the line that Tcl tells.
std::optional<Place> placeOfFailure(Interp& interp, std::string_view command) {
    const Proc* const procedure = interp.framePtr ? interp.framePtr->procPtr : nullptr;
    std::optional<Place> found;
    Tcl_HashSearch search;
    for (Tcl_HashEntry* entry = Tcl_FirstHashEntry(interp.lineBCPtr, &search); entry;
         entry = Tcl_NextHashEntry(&search)) {
        const auto& code =
            *reinterpret_cast<const ByteCode*>(Tcl_GetHashKey(interp.lineBCPtr, entry));
        const auto& lines = *static_cast<const ExtCmdLoc*>(Tcl_GetHashValue(entry));
        // Code that runs is held beside its value.
        if (code.refCount < 2 || !hasInLine(code, interp.errorLine, command))
            continue;
        const std::optional<Place> place = placeOfLine(lines, code, interp.errorLine);
        const bool isBody = procedure && code.procPtr == procedure;
        if (place && (isBody || !found))
            found = place;
        if (place && isBody)
            break;
    }
    return found;
}

/// What the frames begin with.
struct Innermost {
    std::optional<Place> place;
    const CallFrame* level = nullptr;
};

int levelOf(const CallFrame* frame) {
    return frame ? static_cast<int>(frame->level) : 0;
}

std::vector<TclFrame> framesOf(const CmdFrame* frame, const Interp& own,
                               const Innermost& innermost) {
    std::vector<TclFrame> found;
    const CallFrame* level = nullptr;
    Tcl_Obj* path = nullptr;
    const auto add = [&](const CallFrame* callFrame, const Place& place, const char* command) {
        level = callFrame;
        path = place.path;
        found.push_back({levelOf(callFrame), textOf(place.path), place.line, command});
    };
    if (innermost.place && innermost.place->path)
        add(innermost.level, *innermost.place, nullptr);
    for (; frame; frame = frame->nextPtr) {
        const std::optional<Place> place = placeOf(own, *frame);
        if (!place || !place->path)
            continue;
        // Of the code at one level the innermost command counts, also that of a file for another
        // one that has sourced it.
        const bool isSame =
            !found.empty() && frame->framePtr == level && bytesOf(place->path) == bytesOf(path);
        if (!isSame)
            add(frame->framePtr, *place, commandOf(*frame));
    }
    return found;
}

/// Where a procedure was defined.
std::optional<Place> placeOfProcedure(const Interp& interp, const Proc* procedure) {
    const Tcl_HashEntry* const entry =
        procedure ? Tcl_FindHashEntry(interp.linePBodyPtr, reinterpret_cast<const char*>(procedure))
                  : nullptr;
    const auto* const body =
        entry ? static_cast<const CmdFrame*>(Tcl_GetHashValue(entry)) : nullptr;
    if (!body || body->type != TCL_LOCATION_SOURCE || !body->line || !body->data.eval.path)
        return std::nullopt;
    return Place{body->data.eval.path, body->line[0]};
}

}  // namespace

std::vector<TclFrame> runningFrames(Tcl_Interp* interp) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    return framesOf(own.cmdFramePtr, own, {});
}

TclFrame runningProcedure(Tcl_Interp* interp) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    for (const CallFrame* frame = own.framePtr; frame; frame = frame->callerVarPtr) {
        if (const std::optional<Place> place = placeOfProcedure(own, frame->procPtr))
            return {levelOf(frame), textOf(place->path), place->line, nullptr};
    }
    return {};
}

std::optional<TclPlace> innermostPlace(Tcl_Interp* interp) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    for (const CmdFrame* frame = own.cmdFramePtr; frame; frame = frame->nextPtr) {
        const std::optional<Place> place = placeOf(own, *frame);
        if (place && place->path)
            return TclPlace{levelOf(frame->framePtr), place->path, place->line};
    }
    return std::nullopt;
}

std::vector<TclFrame> framesAtError(Tcl_Interp* interp, std::string_view command) {
    Interp& own = *reinterpret_cast<Interp*>(interp);
    const CmdFrame* const frame = own.cmdFramePtr;
    // A command at the top level of a file has lost its lines, but knows which one it was.
    if (frame && frame->type == TCL_LOCATION_SOURCE && !frame->line)
        return framesOf(frame->nextPtr, own,
                        {Place{frame->data.eval.path, own.errorLine}, frame->framePtr});
    return framesOf(frame, own, {placeOfFailure(own, command), own.framePtr});
}

bool hasLateErrors(Tcl_Interp* interp) {
    // As Tcl keeps them for an interpreter, in no header at all.
    struct LateErrors {
        Tcl_Interp* interp;
        Tcl_Obj* handler;
        void* first;
        void* last;
    };
    const void* const errors = Tcl_GetAssocData(interp, "tclBgError", nullptr);
    return errors && static_cast<const LateErrors*>(errors)->first;
}

void forgetCancellation(Tcl_Interp* interp) {
    reinterpret_cast<Interp*>(interp)->flags &= ~(CANCELED | TCL_CANCEL_UNWIND);
}

int commandDepth(Tcl_Interp* interp) {
    const CmdFrame* const frame = reinterpret_cast<Interp*>(interp)->cmdFramePtr;
    return frame ? frame->level : 0;
}

std::vector<QByteArray> runningCommands(Tcl_Interp* interp, int outer) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    std::vector<QByteArray> commands;
    for (const CmdFrame* frame = own.cmdFramePtr; frame && frame->level > outer;
         frame = frame->nextPtr) {
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

int evaluateFile(Tcl_Interp* interp, const QString& text, const QString& path) {
    Interp& own = *reinterpret_cast<Interp*>(interp);
    const TclRef file = toTcl(path);
    // As `source` does it.
    const QScopedValueRollback<Tcl_Obj*> scriptFile(own.scriptFile, file.get());
    own.evalFlags |= TCL_EVAL_FILE | TCL_ALLOW_EXCEPTIONS;
    const QByteArray source = toTclSource(text);
    return Tcl_EvalEx(interp, source.constData(), source.size(), TCL_EVAL_GLOBAL);
}

TclFrame definitionOf(Tcl_Interp* interp, const char* procedure) {
    const Interp& own = *reinterpret_cast<Interp*>(interp);
    const std::optional<Place> place =
        placeOfProcedure(own, TclFindProc(reinterpret_cast<Interp*>(interp), procedure));
    return place ? TclFrame{0, textOf(place->path), place->line, nullptr} : TclFrame();
}

bool isProcedure(Tcl_Interp* interp, const char* name) {
    return TclFindProc(reinterpret_cast<Interp*>(interp), name) != nullptr;
}

bool isMadeAsList(Tcl_Obj* list) {
    const auto* const own = static_cast<const List*>(list->internalRep.twoPtrValue.ptr1);
    return !list->bytes || own->canonicalFlag != 0;
}

}  // namespace Tamrix::TclPlugin
