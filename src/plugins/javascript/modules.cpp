#include "plugins/javascript/modules.h"

#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/Modules.h>
#include <js/Promise.h>

#include <QDir>
#include <QFileInfo>

#include "base/utf8file.h"
#include "interpreter/bridge/debugger.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/promises.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// `place` is where no running code is.
[[noreturn]] void refuse(const QString& text, const LineInfo& place = {}) {
    raiseBuiltIn("Error", text);
    JS::RootedValue error(engineContext());
    if (place.isValid() && JS_GetPendingException(engineContext(), &error) && error.isObject()) {
        JS::RootedObject object(engineContext(), &error.toObject());
        JavaScriptInterpreter& interpreter = *JavaScriptInterpreter::active();
        ScriptFailure failure;
        failure.origin.line = place.lineNumber();
        failure.origin.sourceId = interpreter.languageDebugger().sourceIdOf(place.fileName());
        interpreter.noticeFailure(failure, object);
    }
    throw ScriptErrorSet();
}

QString importerPath(const JS::Value& importer) {
    return importer.isString() ? fromJsString(importer.toString()) : QString();
}

QString specifierOf(JSContext* context, JS::HandleObject request) {
    return fromJsString(checked(JS::GetModuleRequestSpecifier(context, request)));
}

Modules& currentModules() {
    ScriptRealm* const realm = ScriptRealm::current();
    if (!realm)
        refuse(QStringLiteral("No module can be loaded while no test case runs"));
    return realm->modules();
}

/// The file, or the one with a suffix of modules behind the name; empty when there is none.
QString existing(const QString& path) {
    for (const char* const suffix : {"", ".js", ".mjs"}) {
        const QFileInfo file(path + QLatin1String(suffix));
        if (file.isFile())
            return Debugger::sanitizedFilePath(file.filePath());
    }
    return {};
}

}  // namespace

void Modules::install(JSContext* context) {
    JSRuntime* const runtime = JS_GetRuntime(context);
    JS::SetModuleResolveHook(runtime, resolve);
    JS::SetModuleDynamicImportHook(runtime, importLater);
    JS::SetModuleMetadataHook(runtime, describe);
}

void Modules::setFolders(const QStringList& folders) {
    m_folders = folders;
    m_folders.removeDuplicates();
}

void Modules::addFolder(const QString& folder) {
    if (!m_folders.contains(folder))
        m_folders.append(folder);
}

JS::Value Modules::fileValue(const QString& path) {
    return toJsText(path);
}

JSObject* Modules::compile(const QString& text, const QString& path) {
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->javaScriptDebugger().noticeFile(path);
    JS::CompileOptions options(m_context);
    const QByteArray file = path.toUtf8();
    options.setFileAndLine(file.constData(), 1);
    JS::SourceText<char16_t> source;
    setSource(text, &source);
    JS::RootedObject module(m_context, checked(JS::CompileModule(m_context, options, source)));
    JS::SetModulePrivate(module, fileValue(path));
    return module;
}

JSObject* Modules::add(const QString& text, const QString& path) {
    JS::RootedObject module(m_context, compile(text, path));
    m_modules.insert_or_assign(path.toStdString(), JS::PersistentRootedObject(m_context, module));
    return module;
}

void Modules::run(JS::HandleObject module) {
    m_outermost = module;
    checked(JS::ModuleInstantiate(m_context, module));
    JS::RootedValue value(m_context);
    checked(JS::ModuleEvaluate(m_context, module, &value));
    settled(&value);
}

QString Modules::find(const Import& import) const {
    const QString& name = import.name;
    const QDir folder(import.importer.isEmpty() ? QDir::currentPath()
                                                : QFileInfo(import.importer).absolutePath());
    if (name.startsWith(QLatin1String("./")) || name.startsWith(QLatin1String("../")) ||
        QDir::isAbsolutePath(name)) {
        const QString path = existing(QDir::cleanPath(folder.filePath(name)));
        if (path.isEmpty())
            refuse(QStringLiteral("There is no module '%1' beside %2").arg(name, import.importer),
                   import.place);
        return path;
    }
    for (const QString& each : m_folders) {
        const QString path = existing(QDir(each).filePath(name));
        if (!path.isEmpty())
            return path;
    }
    refuse(QStringLiteral("There is no module '%1' in %2").arg(name, m_folders.join(", ")),
           import.place);
}

JSObject* Modules::load(const Import& import) {
    const QString path = find(import);
    const auto known = m_modules.find(path.toStdString());
    if (known != m_modules.end())
        return known->second;
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (!content)
        refuse(QStringLiteral("%1: %2").arg(path, content.error().text), import.place);
    if (content->faultyLine > 0)
        refuse(QStringLiteral("%1:%2: the file is not encoded in UTF-8")
                   .arg(path, QString::number(content->faultyLine)),
               import.place);
    return add(content->text, path);
}

LineInfo Modules::placeOfImport(const QString& importer, JS::HandleObject request) const {
    const auto known = m_modules.find(importer.toStdString());
    JS::RootedObject module(m_context, known == m_modules.end() ? m_outermost : known->second);
    if (!module)
        return {};
    JS::RootedObject requests(m_context, checked(JS::GetRequestedModules(m_context, module)));
    JS::RootedValueVector all(m_context);
    elementsOf(requests, &all);
    JS::RootedValue each(m_context);
    for (const JS::Value& value : all) {
        each = value;
        JSString* const name = JS::GetRequestedModuleSpecifier(m_context, each);
        if (fromJsString(checked(name)) != specifierOf(m_context, request))
            continue;
        std::uint32_t line = 0;
        std::uint32_t column = 0;
        JS::GetRequestedModuleSourcePos(m_context, each, &line, &column);
        return LineInfo(importer, static_cast<int>(line));
    }
    return {};
}

JSObject* Modules::resolve(JSContext* context, JS::HandleValue importer, JS::HandleObject request) {
    JS::RootedObject module(context);
    guarded("import", [&] {
        Modules& modules = currentModules();
        const QString path = importerPath(importer);
        module = modules.load(
            {specifierOf(context, request), path, modules.placeOfImport(path, request)});
        return true;
    });
    return module;
}

bool Modules::importLater(JSContext* context, JS::HandleValue importer, JS::HandleObject request,
                          JS::HandleObject promise) {
    JS::RootedValue evaluated(context);
    guarded("import", [&] {
        const Import import{specifierOf(context, request), importerPath(importer), {}};
        JS::RootedObject module(context, currentModules().load(import));
        checked(JS::ModuleInstantiate(context, module) &&
                JS::ModuleEvaluate(context, module, &evaluated));
        return true;
    });
    // Without an evaluation what is pending is what the promise is rejected with.
    JS::RootedObject evaluation(context, evaluated.isObject() ? &evaluated.toObject() : nullptr);
    return JS::FinishDynamicModuleImport(context, evaluation, importer, request, promise);
}

bool Modules::describe(JSContext*, JS::HandleValue file, JS::HandleObject meta) {
    return guarded("import.meta", [&] {
        defineProperty(meta, QStringLiteral("url"), toJsText("file://" + importerPath(file)));
        return true;
    });
}

}  // namespace Tamrix::JavaScriptPlugin
