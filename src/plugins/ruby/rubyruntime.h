#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "interpreter/language/sourcefiles.h"
#include "plugins/ruby/rubyapi.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

/// Ruby's virtual machine: started once, alive to the end of the process, since there is one only.
/// What a test case leaves behind in it is undone instead.
class RubyRuntime {
public:
    /// Starts it on first use. Throws std::runtime_error when it can't be started.
    static RubyRuntime& self();

    /// The module Tamrix.
    VALUE module() const { return m_module; }
    /// What the top level of scripts is executed on.
    VALUE main() const { return m_main; }
    /// The object that stands for a namespace of the library, as `test`; made on first use, with a
    /// global function of its name that gives it.
    VALUE nameSpace(const QString& name);
    /// A constant of a namespace, or of Tamrix for an empty one. Names of the library that begin
    /// with a small letter are functions.
    void defineConstant(const QString& nameSpace, const QString& name, int value);
    /// A global function without arguments that gives the value, and always the last one that was
    /// defined.
    void defineGetter(const QString& name, VALUE value);

    /// Of scripts, and of Ruby's library with the installed gems.
    SourceFiles& files() { return m_files; }

    /// Compiles a text; throws ScriptErrorSet for one that is not Ruby. The same text and file give
    /// the same once more. NULs are refused as syntax errors.
    VALUE compile(const QString& text, const QString& fileName);
    /// Runs a text at the top level, with variables of its own.
    VALUE run(const QString& text, const QString& fileName);

    /// All functions are known: what there is now is what a test case finds. Once for the process.
    void takeState();
    /// What init scripts have made is to stay until popState().
    void pushState() { keepState("push"); }
    void popState() { keepState("pop"); }
    /// A test case has ended: module path, constants, methods, variables, threads, handlers and
    /// what else scripts have changed becomes as it was.
    void restoreState() { keepState("restore"); }
    /// What stands behind the end of a script's code, "__END__", is what it reads as DATA.
    void openData(const QString& text, const QString& fileName);
    void runExitBlocks() { keepState("run_exit_blocks"); }

    /// What is looked into for modules, in front of Ruby's own.
    void setSearchPath(const QStringList& folders);
    void addToSearchPath(const QString& folder);
    void setArguments(const QString& script, const QStringList& arguments);

    /// Names of the global variables that scripts have made.
    VALUE scriptGlobals();
    /// A Hash of the constants of scripts that hold Hashes: those in the module of this name and
    /// those of the top level.
    VALUE scriptHashes(const QString& moduleName);
    /// Whether a file was loaded, which `require` then does not do once more.
    bool hasFeature(const QString& path);
    void noteFeature(const QString& path);

private:
    RubyRuntime();
    void defineTamrix();
    /// Calls a method of the Ruby object that keeps the state of the runtime; what it can't do goes
    /// to standard error.
    void keepState(const char* operation);

    VALUE m_module = Qnil;
    VALUE m_main = Qnil;
    VALUE m_state = Qnil;
    bool m_isStateTaken = false;
    QMap<QString, VALUE> m_nameSpaces;
    SourceFiles m_files;
    QString m_compiledText;
    QString m_compiledFile;
    RubyRef m_compiledCode;
};

}  // namespace Tamrix::RubyPlugin
