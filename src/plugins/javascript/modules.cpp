#include "plugins/javascript/modules.h"

#include <QDir>
#include <QFileInfo>

#include "interpreter/bridge/debugger.h"
#include "interpreter/language/sourcefiles.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/promises.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// `place` is where no running code is.
[[noreturn]] void refuse(const QString& text, const LineInfo& place = {}) {
    auto* const interpreter = JavaScriptInterpreter::active();
    try {
        throwBuiltIn(JSEXN_ERR, text);
    } catch (const ScriptErrorSet&) {
        ValueRoot error;
        if (place.isValid() && interpreter && JS_GetPendingException(engineContext(), &error))
            interpreter->noticePlace(place, ObjectRoot(error));
        throw;
    }
}

QString importerPath(const JS::Value& importer) {
    return importer.isString() ? fromJsText(importer) : QString();
}

QString specifierOf(JS::HandleObject request) {
    return fromJsString(checked(JS::GetModuleRequestSpecifier(engineContext(), request)));
}

QString importName() {
    return QStringLiteral("import");
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

JS::Value evaluated(JS::HandleObject module) {
    checked(JS::ModuleInstantiate(engineContext(), module));
    return given<JS::Value>(JS::ModuleEvaluate, module);
}

}  // namespace

void Modules::install() {
    JSRuntime* const runtime = JS_GetRuntime(engineContext());
    JS::SetModuleResolveHook(runtime, resolve);
    JS::SetModuleDynamicImportHook(runtime, importLater);
    JS::SetModuleMetadataHook(runtime, describe);
}

JSObject* Modules::compile(const QString& text, const QString& path) {
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->languageDebugger().sourceIdOf(path);
    Source source(text, path);
    const ObjectRoot module(
        checked(JS::CompileModule(engineContext(), source.options, source.text)));
    const ValueRoot file(toJsText(path));
    JS::SetModulePrivate(module, file);
    return module;
}

JSObject* Modules::add(const QString& text, const QString& path) {
    const ObjectRoot module(compile(text, path));
    m_modules.insert(path, module);
    return module;
}

void Modules::run(JS::HandleObject module) {
    m_outermost = module;
    ValueRoot value(evaluated(module));
    settled(&value);
}

QString Modules::find(const Import& import) const {
    const QString& name = import.name;
    const bool isBeside = name.startsWith(QLatin1String("./")) ||
                          name.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(name);
    const QStringList beside(import.importer.isEmpty() ? QDir::currentPath()
                                                       : QFileInfo(import.importer).absolutePath());
    for (const QString& folder : isBeside ? beside : m_folders) {
        const QString path = existing(QDir::cleanPath(QDir(folder).filePath(name)));
        if (!path.isEmpty())
            return path;
    }
    QStringList folders = m_folders;
    folders.removeDuplicates();
    refuse(isBeside ? QStringLiteral("There is no module '%1' beside %2").arg(name, import.importer)
                    : QStringLiteral("There is no module '%1' in %2").arg(name, folders.join(", ")),
           import.place);
}

JSObject* Modules::moduleOf(const Import& import) {
    const QString path = find(import);
    if (isLoaded(path))
        return m_modules.value(path);
    const Outcome<QString> text = readSource(path);
    if (!text)
        refuse(text.error().text, import.place);
    return add(*text, path);
}

LineInfo Modules::placeOf(const Import& import) const {
    const ObjectRoot module(m_modules.value(import.importer, m_outermost));
    if (!module)
        return {};
    ValueRoots requests;
    elementsOf(ObjectRoot(checked(JS::GetRequestedModules(engineContext(), module))), &requests);
    for (std::size_t index = 0; index < requests.length(); ++index) {
        JSString* const name = JS::GetRequestedModuleSpecifier(engineContext(), requests[index]);
        if (fromJsString(checked(name)) != import.name)
            continue;
        std::uint32_t line = 0;
        std::uint32_t column = 0;
        JS::GetRequestedModuleSourcePos(engineContext(), requests[index], &line, &column);
        return LineInfo(import.importer, static_cast<int>(line));
    }
    return {};
}

// What the engine asks

JSObject* Modules::resolve(JSContext*, JS::HandleValue importer, JS::HandleObject request) {
    ObjectRoot module;
    guarded(importName, [&] {
        Import import{specifierOf(request), importerPath(importer), {}};
        import.place = currentModules().placeOf(import);
        module = currentModules().moduleOf(import);
        return true;
    });
    return module;
}

bool Modules::importLater(JSContext* context, JS::HandleValue importer, JS::HandleObject request,
                          JS::HandleObject promise) {
    ObjectRoot evaluation;
    guarded(importName, [&] {
        const ObjectRoot module(
            currentModules().moduleOf({specifierOf(request), importerPath(importer), {}}));
        evaluation = ObjectRoot(evaluated(module)).get();
        return true;
    });
    // Without an evaluation what is pending is what the promise is rejected with.
    return JS::FinishDynamicModuleImport(context, evaluation, importer, request, promise);
}

bool Modules::describe(JSContext*, JS::HandleValue file, JS::HandleObject meta) {
    return guarded(importName, [&] {
        defineProperty(meta, QStringLiteral("url"), toJsText("file://" + importerPath(file)));
        return true;
    });
}

}  // namespace Tamrix::JavaScriptPlugin
