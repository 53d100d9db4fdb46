#include "plugins/ruby/frames.h"

#include <QHash>
#include <any>

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyref.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

/// A runaway recursion has thousands of lines; the innermost ones tell enough.
constexpr std::size_t maximumStackLines = 100;
/// More than Ruby's stack holds.
constexpr int maximumFrames = 20'000;

struct File {
    bool isScript = false;
    QString path;
};

const File& fileOf(const QByteArray& path) {
    static auto* const s_files = new QHash<QByteArray, File>;
    auto known = s_files->find(path);
    if (known == s_files->end()) {
        File file;
        file.isScript = path.startsWith('/') && !RubyRuntime::self().isOfLibrary(path);
        file.path = path.startsWith('/') ? Debugger::sanitizedFilePath(QString::fromUtf8(path))
                                         : QString();
        known = s_files->insert(path, file);
    }
    return *known;
}

QByteArray bytesOf(VALUE text) {
    return RB_TYPE_P(text, T_STRING)
               ? QByteArray(RSTRING_PTR(text), static_cast<int>(RSTRING_LEN(text)))
               : QByteArray();
}

/// Room for the frames of the whole stack. Script thread only.
struct Stack {
    std::vector<VALUE> frames = std::vector<VALUE>(maximumFrames);
    std::vector<int> lines = std::vector<int>(maximumFrames);
    int count = 0;

    explicit Stack(int limit = maximumFrames) {
        limit = std::min(limit, maximumFrames);
        count = rb_profile_frames(0, limit, frames.data(), lines.data());
    }
};

Stack& readStack() {
    static auto* const s_stack = new Stack(0);
    s_stack->count =
        rb_profile_frames(0, maximumFrames, s_stack->frames.data(), s_stack->lines.data());
    return *s_stack;
}

QByteArray pathOf(VALUE frame) {
    return bytesOf(rb_profile_frame_path(frame));
}

/// One line of a backtrace, "path:line:in `name'".
struct Line {
    QByteArray path;
    int line = 0;
};

Line parseLine(const QByteArray& text) {
    // A path may hold ":" itself: the number is behind the last one that has a digit behind it.
    int end = text.indexOf(":in `");
    if (end < 0)
        end = text.size();
    const int colon = text.lastIndexOf(':', end - 1);
    if (colon < 0)
        return {text, 0};
    return {text.left(colon), text.mid(colon + 1, end - colon - 1).toInt()};
}

std::vector<Line> backtraceOf(VALUE exception) {
    std::vector<Line> lines;
    // A syntax error tells its place in its text.
    if (rb_obj_is_kind_of(exception, rb_eSyntaxError) == Qtrue) {
        const QByteArray text = textOf(exception).section('\n', 0, 0).toUtf8();
        const int behind = text.indexOf(": ");
        if (behind > 0)
            lines.push_back(parseLine(text.left(behind)));
    }
    VALUE trace = Qnil;
    try {
        trace = callMethod(exception, "backtrace");
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    if (!RB_TYPE_P(trace, T_ARRAY))
        return lines;
    for (long index = 0; index < RARRAY_LEN(trace); ++index)
        lines.push_back(parseLine(bytesOf(rb_ary_entry(trace, index))));
    return lines;
}

}  // namespace

bool isScriptFile(const QByteArray& path) {
    return fileOf(path).isScript;
}

QString scriptPath(const QByteArray& path) {
    return fileOf(path).path;
}

bool scriptFrameAt(int level, LineInfo* position) {
    const Stack& stack = readStack();
    for (int index = 0; index < stack.count; ++index) {
        const auto place = static_cast<std::size_t>(index);
        const QByteArray path = pathOf(stack.frames[place]);
        if (!isScriptFile(path) || level-- > 0)
            continue;
        *position = LineInfo(scriptPath(path), stack.lines[place]);
        return true;
    }
    return false;
}

int scriptDepth() {
    const Stack& stack = readStack();
    int depth = 0;
    for (int index = 0; index < stack.count; ++index)
        depth += isScriptFile(pathOf(stack.frames[static_cast<std::size_t>(index)])) ? 1 : 0;
    return depth;
}

std::vector<ScriptFrame> scriptFrames() {
    // Arrays of path, line and binding; frames of C code have no binding.
    const VALUE all = protect([] {
        return rb_debug_inspector_open(
            [](const rb_debug_inspector_t* inspector, void*) -> VALUE {
                const VALUE locations = rb_debug_inspector_backtrace_locations(inspector);
                const VALUE rows = rb_ary_new();
                for (long index = 0; index < RARRAY_LEN(locations); ++index) {
                    const VALUE binding = rb_debug_inspector_frame_binding_get(inspector, index);
                    const VALUE location = rb_ary_entry(locations, index);
                    if (!NIL_P(binding))
                        rb_ary_push(rows,
                                    rb_ary_new_from_args(
                                        3, rb_funcall(location, rb_intern("path"), 0),
                                        rb_funcall(location, rb_intern("lineno"), 0), binding));
                }
                return rows;
            },
            nullptr);
    });
    std::vector<ScriptFrame> frames;
    for (long index = 0; index < RARRAY_LEN(all); ++index) {
        const VALUE row = rb_ary_entry(all, index);
        const QByteArray path = bytesOf(rb_ary_entry(row, 0));
        if (!isScriptFile(path))
            continue;
        ScriptFrame frame;
        frame.own = RubyRef(rb_ary_entry(row, 2));
        frame.file = scriptPath(path);
        frame.line = NUM2INT(rb_ary_entry(row, 1));
        frames.push_back(std::move(frame));
    }
    return frames;
}

VALUE bindingOf(const ScriptFrame& frame) {
    return std::any_cast<const RubyRef&>(frame.own).get();
}

std::vector<LineInfo> scriptLinesOf(VALUE exception) {
    std::vector<LineInfo> stack;
    const std::vector<Line> lines = backtraceOf(exception);
    for (const Line& line : lines) {
        if (isScriptFile(line.path) && stack.size() < maximumStackLines)
            stack.emplace_back(scriptPath(line.path), line.line);
    }
    if (stack.empty() && !lines.empty() && lines.front().path.startsWith('/'))
        stack.emplace_back(scriptPath(lines.front().path), lines.front().line);
    return stack;
}

int outermostLineOf(VALUE exception) {
    const std::vector<Line> lines = backtraceOf(exception);
    return lines.empty() ? 0 : lines.back().line;
}

}  // namespace Tamrix::RubyPlugin
