#include "plugins/ruby/rubyruntime.h"

#include <QHash>
#include <QRegularExpression>
#include <csignal>
#include <cstdio>
#include <stdexcept>

#include "interpreter/language/prelude.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/exceptions.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/nativeclasses.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/objectclass.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubydebugger.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyoutput.h"
#include "plugins/ruby/rubywaits.h"
#include "plugins/ruby/scripterrors.h"
#include "plugins/ruby/valueclasses.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Signals that are the runner's, and those that end the process: Ruby puts handlers there.
constexpr int foreignSignals[] = {SIGTERM, SIGHUP, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2, SIGPIPE};

/// Keeps what signals did before Ruby has started.
class KeptSignals {
public:
    KeptSignals() {
        for (std::size_t index = 0; index < std::size(foreignSignals); ++index)
            sigaction(foreignSignals[index], nullptr, &m_actions[index]);
    }
    ~KeptSignals() {
        for (std::size_t index = 0; index < std::size(foreignSignals); ++index)
            sigaction(foreignSignals[index], &m_actions[index], nullptr);
    }
    KeptSignals(const KeptSignals&) = delete;
    KeptSignals& operator=(const KeptSignals&) = delete;

private:
    struct sigaction m_actions[std::size(foreignSignals)]{};
};

void startRuby() {
    const KeptSignals signalsOfRunner;
    if (ruby_setup() != 0)
        throw std::runtime_error("Ruby can't be started");
    // Files and streams are UTF-8 whatever the locale says. Excerpts of scripts in messages are
    // left to reports.
    static char s_name[] = "ruby";
    static char s_encoding[] = "--encoding=UTF-8";
    static char s_excerpts[] = "--disable=error_highlight";
    static char s_option[] = "-e";
    static char s_code[] = "";
    static char* s_arguments[] = {s_name, s_encoding, s_excerpts, s_option, s_code, nullptr};
    int state = 0;
    void* const program = ruby_options(5, s_arguments);
    if (ruby_executable_node(program, &state) == 0)
        throw std::runtime_error("Ruby can't be set up");
}

/// The getters of global functions, by their names. Values are kept by constants or registered.
QHash<ID, VALUE>& gettersByName() {
    static auto* const s_getters = new QHash<ID, VALUE>;
    return *s_getters;
}

VALUE getGlobal(VALUE) {
    return gettersByName().value(rb_frame_callee(), Qnil);
}

/// What of the plug-in is written in Ruby, in the order in which it is run.
constexpr const char* preludeFiles[] = {"state", "values",    "objects",     "output",
                                        "steps", "condition", "remotesystem"};

bool isRubyFile(const QByteArray& name) {
    return name.startsWith('/');
}

VALUE evaluateSource(const char* source) {
    return protect([=] { return rb_eval_string(source); });
}

int lineOfNul(const QString& text) {
    const int place = text.indexOf(QChar(0));
    return place < 0 ? -1 : text.leftRef(place).count('\n') + 1;
}

/// The text is decoded already: a coding line in it means nothing any more.
QString withoutCoding(const QString& text) {
    static const QRegularExpression s_coding(
        QStringLiteral("\\A((?:#.*\\n)?#.*?coding[:=]\\s*)([\\w.-]+)"));
    const QRegularExpressionMatch match = s_coding.match(text.left(1000));
    if (!match.hasMatch())
        return text;
    return QString(text).replace(match.capturedStart(2), match.capturedLength(2), "utf-8");
}

}  // namespace

RubyRuntime& RubyRuntime::self() {
    // Never destroyed: values of Ruby live on after static destruction has begun.
    static auto* const s_instance = new RubyRuntime;
    return *s_instance;
}

RubyRuntime::RubyRuntime() : m_files(isRubyFile) {
    startRuby();
    RubyRef::startMarking();
    try {
        defineTamrix();
    } catch (const ScriptErrorSet&) {
        // What it is about can't be told by classes that were to be made.
        throw std::runtime_error("Ruby started but could not be set up: " +
                                 textOf(takeException()).toStdString());
    }
}

void RubyRuntime::defineTamrix() {
    m_module = rb_define_module("Tamrix");
    rb_gc_register_address(&m_module);
    rb_gc_register_address(&m_main);
    m_main = evaluateSource("TOPLEVEL_BINDING.receiver");
    rb_gc_register_address(&m_state);
    defineExceptions(m_module);
    defineValueClasses(m_module);
    defineNativeBase(m_module);
    const VALUE native = rb_define_module_under(m_module, "Native");
    defineObjectClass(m_module);
    defineOutput(m_module, native);
    noteRaises();
    for (const char* const name : preludeFiles) {
        // Ruby gives such names to what it has itself. Not by run(): there is no debugger yet.
        const QByteArray source = preludeSource(QStringLiteral("ruby/%1.rb").arg(name));
        const QString file = QStringLiteral("<internal:tamrix/%1>").arg(name);
        callMethod(compile(QString::fromUtf8(source), file), "eval");
    }
    const VALUE folders = evaluateSource("Tamrix::RuntimeState.library_folders");
    for (long index = 0; index < RARRAY_LEN(folders); ++index)
        m_files.addLibrary(textOf(rb_ary_entry(folders, index)));
    m_state = evaluateSource("Tamrix::RuntimeState.new");
    installWaits();
}

VALUE RubyRuntime::nameSpace(const QString& name) {
    const auto known = m_nameSpaces.constFind(name);
    if (known != m_nameSpaces.constEnd())
        return *known;
    const VALUE object = callMethod(rb_path2class("Tamrix::Namespace"), "new", toRuby(name));
    rb_gc_register_mark_object(object);
    m_nameSpaces.insert(name, object);
    defineGetter(name, object);
    return object;
}

void RubyRuntime::defineGetter(const QString& name, VALUE value) {
    for (const QString& each : rubyNames(name)) {
        const QByteArray text = each.toUtf8();
        gettersByName().insert(rb_intern2(text.constData(), text.size()), value);
        rb_define_private_method(rb_mKernel, text.constData(), getGlobal, 0);
    }
}

void RubyRuntime::defineConstant(const QString& nameSpaceName, const QString& name, int value) {
    if (nameSpaceName.isEmpty())
        rb_define_const(m_module, name.toUtf8().constData(), INT2FIX(value));
    else
        callMethod(nameSpace(nameSpaceName), "define_constant", toRuby(name), INT2FIX(value));
}

// Code

VALUE RubyRuntime::compile(const QString& text, const QString& fileName) {
    if (m_compiledCode && text == m_compiledText && fileName == m_compiledFile)
        return m_compiledCode.get();
    if (const int line = lineOfNul(text); line >= 0)
        throwException(rb_eSyntaxError,
                       QStringLiteral("%1:%2: a NUL character, which no script may have")
                           .arg(fileName, QString::number(line)));
    const auto compiled = [file = toRuby(fileName)](const QString& written) {
        const VALUE source = toRuby(written);
        return protect([=] {
            const VALUE machine = rb_const_get(rb_cObject, rb_intern("RubyVM"));
            const VALUE sequence = rb_const_get(machine, rb_intern("InstructionSequence"));
            return rb_funcall(sequence, rb_intern("compile"), 4, source, file, file, INT2FIX(1));
        });
    };
    const QString written = withoutCoding(text);
    VALUE code = compiled(written);
    // Ruby keeps blocks END { } for the end of the process. They are those of at_exit.
    static const QRegularExpression s_endBlock(QStringLiteral("^([ \\t]*)END([ \\t]*\\{)"),
                                               QRegularExpression::MultilineOption);
    const int blocks = written.count(s_endBlock);
    if (blocks > 0 && textOf(callMethod(code, "disasm")).count("core#set_postexe") == blocks)
        code = compiled(QString(written).replace(s_endBlock, QStringLiteral("\\1at_exit\\2")));
    m_compiledText = text;
    m_compiledFile = fileName;
    m_compiledCode = code;
    return code;
}

void RubyRuntime::openData(const QString& text, const QString& fileName) {
    if (text.contains(QLatin1String("\n__END__")))
        callMethod(m_state, "open_data", toRuby(fileName));
}

VALUE RubyRuntime::run(const QString& text, const QString& fileName) {
    const VALUE code = compile(text, fileName);
    // Ruby tells of what it compiles itself.
    if (RubyInterpreter* const interpreter = RubyInterpreter::active())
        interpreter->rubyDebugger().codeLoaded(code);
    return callMethod(code, "eval");
}

// State

void RubyRuntime::takeState() {
    if (!m_isStateTaken)
        keepState("take");
    m_isStateTaken = true;
}

void RubyRuntime::keepState(const char* operation) {
    try {
        callMethod(m_state, operation);
    } catch (const ScriptErrorSet&) {
        // Ctrl-C is for the script that follows.
        if (!isOrdinaryError()) {
            postponeJump();
            return;
        }
        std::fprintf(stderr, "Ruby's state: %s\n",
                     takeScriptError().message.toLocal8Bit().constData());
    }
}

VALUE RubyRuntime::scriptGlobals() {
    return callMethod(m_state, "script_globals");
}

VALUE RubyRuntime::scriptHashes(const QString& moduleName) {
    return callMethod(m_state, "script_hashes", toRuby(moduleName));
}

bool RubyRuntime::hasFeature(const QString& path) {
    return RTEST(callMethod(m_state, "feature?", toRuby(path)));
}

void RubyRuntime::noteFeature(const QString& path) {
    callMethod(m_state, "note_feature", toRuby(path));
}

void RubyRuntime::setSearchPath(const QStringList& folders) {
    callMethod(m_state, "search_in", toRuby(folders));
}

void RubyRuntime::addToSearchPath(const QString& folder) {
    callMethod(m_state, "add_search_folder", toRuby(folder));
}

void RubyRuntime::setArguments(const QString& script, const QStringList& arguments) {
    const VALUE values = toRuby(arguments);
    protect([=] {
        return rb_funcall(rb_const_get(rb_cObject, rb_intern("ARGV")), rb_intern("replace"), 1,
                          values);
    });
    ruby_script(script.toUtf8().constData());
}

}  // namespace Tamrix::RubyPlugin
