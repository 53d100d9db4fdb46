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
        throwBuiltIn(JSProto_Error, text);
    } catch (const ScriptErrorSet&) {
        ValueRoot error;
        if (place.isValid() && interpreter && JS_GetPendingException(engineContext(), &error))
            interpreter->failures().noticePlace(place, ObjectRoot(error));
        throw;
    }
}

QString textOrNone(const JS::Value& value) {
    return value.isString() ? fromJsText(value) : QString();
}

/// The file of a module in one of the folders, whose suffix may be left out; empty without one.
QString fileIn(const QStringList& folders, const QString& name) {
    for (const QString& folder : folders) {
        const QString path = QDir::cleanPath(QDir(folder).filePath(name));
        for (const char* const suffix : {"", ".js", ".mjs"}) {
            if (QFileInfo(path + QLatin1String(suffix)).isFile())
                return Debugger::sanitizedFilePath(path + QLatin1String(suffix));
        }
    }
    return {};
}

/// For messages.
const auto importName = [] { return QStringLiteral("import"); };

Modules& currentModules() {
    ScriptRealm* const realm = ScriptRealm::current();
    if (!realm)
        refuse(QStringLiteral("No module can be loaded while no test case runs"));
    return realm->modules();
}

JS::Value evaluated(JS::HandleObject module) {
    checked(JS::ModuleInstantiate(engineContext(), module));
    return given<JS::Value>(JS::ModuleEvaluate, module);
}

// What the engine asks

JSObject* moduleFor(JS::HandleValue importer, JS::HandleObject request, bool isRunning) {
    JSString* const name = checked(JS::GetModuleRequestSpecifier(engineContext(), request));
    return currentModules().imported(fromJsString(name), textOrNone(importer), isRunning);
}

JSObject* resolve(JSContext*, JS::HandleValue importer, JS::HandleObject request) {
    ObjectRoot module;
    guarded(importName, [&] {
        module = moduleFor(importer, request, false);
        return true;
    });
    return module;
}

bool importLater(JSContext* context, JS::HandleValue importer, JS::HandleObject request,
                 JS::HandleObject promise) {
    ObjectRoot evaluation;
    guarded(importName, [&] {
        const ObjectRoot module(moduleFor(importer, request, true));
        evaluation = ObjectRoot(evaluated(module)).get();
        return true;
    });
    // Without an evaluation what is pending is what the promise is rejected with.
    return JS::FinishDynamicModuleImport(context, evaluation, importer, request, promise);
}

bool describe(JSContext*, JS::HandleValue file, JS::HandleObject meta) {
    return guarded(importName, [&] {
        defineProperty(meta, QStringLiteral("url"), toJsText("file://" + textOrNone(file)));
        return true;
    });
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
    JS::SetModulePrivate(module, ValueRoot(toJsText(path)));
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

JSObject* Modules::imported(const QString& name, const QString& importer, bool isRunning) {
    const bool isBeside = name.startsWith(QLatin1String("./")) ||
                          name.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(name);
    QStringList folders = m_folders;
    if (isBeside)
        folders = QStringList(importer.isEmpty() ? QDir::currentPath()
                                                 : QFileInfo(importer).absolutePath());
    const QString path = fileIn(folders, name);
    if (isLoaded(path))
        return m_modules.value(path);
    folders.removeDuplicates();
    const QString where = isBeside ? "beside " + importer : "in " + folders.join(", ");
    const Outcome<QString> text =
        path.isEmpty() ? fail(FailureKind::NotFound,
                              QStringLiteral("There is no module '%1' %2").arg(name, where))
                       : readSource(path);
    if (!text)
        refuse(text.error().text, isRunning ? LineInfo() : placeOf(name, importer));
    return add(*text, path);
}

LineInfo Modules::placeOf(const QString& name, const QString& importer) const {
    const ObjectRoot module(m_modules.value(importer, m_outermost));
    if (!module)
        return {};
    ValueRoots requests;
    elementsOf(ObjectRoot(checked(JS::GetRequestedModules(engineContext(), module))), &requests);
    for (std::size_t index = 0; index < requests.length(); ++index) {
        JSString* const each = JS::GetRequestedModuleSpecifier(engineContext(), requests[index]);
        if (fromJsString(checked(each)) != name)
            continue;
        std::uint32_t line = 0;
        std::uint32_t column = 0;
        JS::GetRequestedModuleSourcePos(engineContext(), requests[index], &line, &column);
        return LineInfo(importer, static_cast<int>(line));
    }
    return {};
}

}  // namespace Tamrix::JavaScriptPlugin
