#include "plugins/ruby/frames.h"

#include <any>

#include "interpreter/language/stacklines.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyref.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

/// More than Ruby's stack holds.
constexpr int maximumFrames = 20'000;

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

/// One line of a backtrace, "path:line:in `name'".
struct Line {
    QByteArray path;
    /// 0 for C code that no line of Ruby has called.
    int line = 0;
    QByteArray label;

    bool operator!=(const Line& other) const { return line != other.line || path != other.path; }

    /// C code stands in backtraces at the line that has called it, which follows by itself.
    bool isOfCaller(const Line& caller) const {
        return line == caller.line && path == caller.path && label != caller.label &&
               !label.contains(" in ");
    }
};

Line parseLine(const QByteArray& text) {
    int end = text.indexOf(":in `");
    if (end < 0)
        end = text.size();
    const QByteArray label = text.mid(end);
    const int colon = text.lastIndexOf(':', end - 1);
    bool isNumber = false;
    const int line = text.mid(colon + 1, end - colon - 1).toInt(&isNumber);
    // A path may hold ":" itself.
    return isNumber ? Line{text.left(colon), line, label} : Line{text.left(end), 0, label};
}

/// `rescue` and `ensure` have frames of their own in front of that of their method, which then
/// stands where the error was raised. Only the inner one counts.
bool isPartOfNextFrame(const QByteArray& label) {
    return label.contains("rescue in ") || label.contains("ensure in ");
}

/// The lines of a backtrace as Ruby has it, an array of texts.
std::vector<Line> linesOf(VALUE trace) {
    std::vector<Line> lines;
    for (long index = 0; index < RARRAY_LEN(trace); ++index) {
        const Line line = parseLine(bytesOfRuby(rb_ary_entry(trace, index)));
        if (!lines.empty() && lines.back().isOfCaller(line))
            lines.pop_back();
        const bool isPart = !lines.empty() && isPartOfNextFrame(lines.back().label) &&
                            lines.back().label.endsWith(line.label.mid(5));
        if (line.line > 0 && !isPart)
            lines.push_back(line);
    }
    return lines;
}

/// Calls `visit` with path and line of each frame of a script, the innermost first, until it gives
/// false.
template <typename Visit>
void visitScriptFrames(Visit visit) {
    const Stack& stack = readStack();
    const auto count = static_cast<std::size_t>(stack.count);
    bool mayHaveParts = false;
    for (std::size_t index = 0; index + 1 < count && !mayHaveParts; ++index)
        mayHaveParts = stack.frames[index] == stack.frames[index + 1];
    // `rescue` looks as a call of the method by itself, until the names are asked for.
    if (mayHaveParts) {
        for (const Line& line : linesOf(protect([] { return rb_make_backtrace(); }))) {
            if (isScriptFile(line.path) && !visit(line.path, line.line))
                return;
        }
        return;
    }
    for (std::size_t index = 0; index < count; ++index) {
        const QByteArray path = bytesOfRuby(rb_profile_frame_path(stack.frames[index]));
        // Line 0 is what lies below all scripts.
        if (stack.lines[index] > 0 && isScriptFile(path) && !visit(path, stack.lines[index]))
            return;
    }
}

/// Where an exception was raised whose class has a `backtrace` of its own, from which Ruby takes
/// what it would note itself. The name is none that Ruby code can use.
constexpr const char* notedTrace = "tamrix_backtrace";

/// What `backtrace` gives; when that of a script's class fails or gives no lines, where the
/// exception was raised. Nil for one that was never raised.
VALUE traceOf(VALUE exception) {
    try {
        const VALUE trace = callMethod(exception, "backtrace");
        if (RB_TYPE_P(trace, T_ARRAY))
            return trace;
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    return rb_attr_get(exception, rb_intern(notedTrace));
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
    const VALUE trace = traceOf(exception);
    if (RB_TYPE_P(trace, T_ARRAY)) {
        for (const Line& line : linesOf(trace))
            lines.push_back(line);
    }
    return lines;
}

}  // namespace

void noteRaises() {
    // With this flag Ruby calls the function so, whatever the type of the parameter says.
    using RawHook = void (*)(VALUE data, const rb_trace_arg_t* event);
    const RawHook raised = [](VALUE, const rb_trace_arg_t* event) {
        const VALUE exception = rb_tracearg_raised_exception(const_cast<rb_trace_arg_t*>(event));
        const bool isOwn =
            rb_obj_is_kind_of(exception, rb_eException) == Qtrue &&
            !rb_method_basic_definition_p(CLASS_OF(exception), rb_intern("backtrace"));
        if (isOwn && !RB_OBJ_FROZEN(exception))
            rb_ivar_set(exception, rb_intern(notedTrace), rb_make_backtrace());
    };
    // No TracePoint: scripts may end those.
    rb_add_event_hook2(
        reinterpret_cast<rb_event_hook_func_t>(reinterpret_cast<void (*)()>(raised)),
        RUBY_EVENT_RAISE, Qnil,
        rb_event_hook_flag_t(RUBY_EVENT_HOOK_FLAG_SAFE | RUBY_EVENT_HOOK_FLAG_RAW_ARG));
}

bool isScriptFile(const QByteArray& path) {
    return RubyRuntime::self().files().isScript(path.constData());
}

QString scriptPath(const QByteArray& path) {
    return RubyRuntime::self().files().path(path.constData());
}

bool scriptFrameAt(int level, LineInfo* position) {
    bool isFound = false;
    visitScriptFrames([&](const QByteArray& path, int line) {
        isFound = level-- == 0;
        if (isFound)
            *position = LineInfo(scriptPath(path), line);
        return !isFound;
    });
    return isFound;
}

int scriptDepth() {
    int depth = 0;
    visitScriptFrames([&](const QByteArray&, int) {
        ++depth;
        return true;
    });
    return depth;
}

std::vector<ScriptFrame> scriptFrames() {
    // Arrays of path, line, binding and label; frames of C code have no binding.
    const VALUE all = protect([] {
        return rb_debug_inspector_open(
            [](const rb_debug_inspector_t* inspector, void*) -> VALUE {
                const VALUE locations = rb_debug_inspector_backtrace_locations(inspector);
                const VALUE rows = rb_ary_new();
                for (long index = 0; index < RARRAY_LEN(locations); ++index) {
                    const VALUE binding = rb_debug_inspector_frame_binding_get(inspector, index);
                    const VALUE location = rb_ary_entry(locations, index);
                    if (!NIL_P(binding))
                        rb_ary_push(rows, rb_ary_new_from_args(
                                              4, rb_funcall(location, rb_intern("path"), 0),
                                              rb_funcall(location, rb_intern("lineno"), 0), binding,
                                              rb_funcall(location, rb_intern("label"), 0)));
                }
                return rows;
            },
            nullptr);
    });
    std::vector<ScriptFrame> frames;
    for (long index = 0; index < RARRAY_LEN(all); ++index) {
        const VALUE row = rb_ary_entry(all, index);
        const QByteArray path = bytesOfRuby(rb_ary_entry(row, 0));
        if (!isScriptFile(path))
            continue;
        ScriptFrame frame;
        frame.own = RubyRef(rb_ary_entry(row, 2));
        frame.file = scriptPath(path);
        frame.line = NUM2INT(rb_ary_entry(row, 1));
        frames.push_back(std::move(frame));
        if (isPartOfNextFrame(bytesOfRuby(rb_ary_entry(row, 3))))
            ++index;
    }
    return frames;
}

VALUE bindingOf(const ScriptFrame& frame) {
    return std::any_cast<const RubyRef&>(frame.own).get();
}

LineInfo definitionOf(VALUE callable) {
    try {
        const VALUE location = callMethod(callable, "source_location");
        if (RB_TYPE_P(location, T_ARRAY))
            return LineInfo(scriptPath(fromRuby(rb_ary_entry(location, 0)).toUtf8()),
                            NUM2INT(rb_ary_entry(location, 1)));
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    return {};
}

std::vector<LineInfo> scriptLinesOf(VALUE exception) {
    // Ruby tells the whole stack, also of what runs on behind a native function that has called.
    std::vector<Line> lines = backtraceOf(exception);
    cutCommonEnd(&lines, linesOf(protect([] { return rb_make_backtrace(); })));
    std::vector<LineInfo> stack;
    for (const Line& line : lines) {
        if (isScriptFile(line.path))
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
