#include "plugins/javascript/scriptlibrary.h"

#include <js/Conversions.h>
#include <jsfriendapi.h>

#include <QStringList>

#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/stepfunctions.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

// Positions in these lines are none of the script's: results stand at the script's own line.
constexpr const char* source = R"js(
(function (scopes, own) {
"use strict";
const tamrix = {};
function define(name, base) {
    const type = {[name]: class extends base {}}[name];
    Object.defineProperty(type.prototype, "name",
                          {value: "tamrix." + name, writable: true, configurable: true});
    tamrix[name] = type;
    return type;
}
const TamrixError = define("Error", Error);
define("LookupError", TamrixError);
define("VerificationError", TamrixError);
define("FatalError", Error);
define("PendingStepError", Error);

// Files and programs of another machine, by SSH. Without arguments it is the default system: the one
// that the settings name, else this machine. What can't be done is a tamrix.Error.
class RemoteSystem {
    #handle;
    constructor(host, port) {
        this.#handle = host === undefined && port === undefined
            ? _tamrix_connect_to_remote_system()
            : _tamrix_connect_to_remote_system(host ?? "", port ?? -1);
    }
    #open() {
        if (this.#handle === null)
            throw new TamrixError("The remote system is closed");
        return this.#handle;
    }
    close() {
        const handle = this.#open();
        this.#handle = null;
        _tamrix_close_remote_system_connection(handle);
    }
    getEnvironmentVariable(name) {
        return _tamrix_remote_get_environment_variable(this.#open(), name);
    }
    getOSName() { return _tamrix_remote_get_os_name(this.#open()); }
    exists(path) { return _tamrix_remote_path_exists(this.#open(), path); }
    rename(oldPath, newPath) { return _tamrix_remote_rename_path(this.#open(), oldPath, newPath); }
    createPath(path, recursive = false) {
        return _tamrix_remote_create_path(this.#open(), path, Boolean(recursive));
    }
    deletePath(path, recursive = false) {
        return _tamrix_remote_delete_path(this.#open(), path, Boolean(recursive));
    }
    createFile(path, content = "", encoding = "UTF-8") {
        return _tamrix_remote_create_file(this.#open(), path, content, encoding);
    }
    deleteFile(path) { return _tamrix_remote_delete_file(this.#open(), path); }
    copy(sourcePath, targetPath) {
        return _tamrix_remote_copy_path(this.#open(), sourcePath, targetPath);
    }
    upload(localPath, remotePath) {
        return _tamrix_remote_upload_file(this.#open(), localPath, remotePath);
    }
    download(remotePath, localPath) {
        return _tamrix_remote_download_file(this.#open(), remotePath, localPath);
    }
    listFiles(path) { return _tamrix_remote_get_directory_content(this.#open(), path); }
    getPathProperty(path, name) {
        return _tamrix_remote_get_path_property(this.#open(), path, name);
    }
    execute(command, cwd = "", env = {}, options = {}) {
        const result = _tamrix_remote_execute_command(this.#open(), command, cwd, env, options);
        result.exitcode = Number(result.exitcode);
        return result;
    }
}
Object.defineProperty(globalThis, "RemoteSystem",
                      {value: RemoteSystem, writable: true, configurable: true});
Object.defineProperty(globalThis, "tamrix", {value: {...tamrix, ...own}, writable: true,
                                             configurable: true});
// What steps and hooks keep for each other, by scenario, feature and test case.
const context = new Proxy({}, {
    get: (target, name) => typeof name === "string" ? scopes.find(name) : undefined,
    set(target, name, value) { scopes.set(String(name), value); return true; },
    has: (target, name) => scopes.names().includes(name),
    deleteProperty: (target, name) => scopes.remove(String(name)),
    ownKeys: () => scopes.names(),
    getOwnPropertyDescriptor: (target, name) => scopes.names().includes(name)
        ? {value: scopes.find(name), writable: true, enumerable: true, configurable: true}
        : undefined,
});
return {classes: Object.freeze(tamrix), context};
})
)js";

QString joinedTexts(const JS::CallArgs& arguments) {
    QStringList texts;
    for (unsigned index = 0; index < arguments.length(); ++index)
        texts.append(textOf(arguments[index]));
    return texts.join(' ');
}

template <ScriptOutput::Stream stream>
JS::Value writeLine(const JS::CallArgs& arguments) {
    const QString line = joinedTexts(arguments);
    auto* const interpreter = JavaScriptInterpreter::active();
    // Each line of it is one of the results.
    for (const QString& part : {line, QStringLiteral("\n")}) {
        if (interpreter)
            interpreter->output().write(stream, part);
        else
            ScriptOutput::writeToProcess(stream, part);
    }
    return JS::UndefinedValue();
}

JS::Value setTimer(const JS::CallArgs& arguments) {
    JSContext* const context = engineContext();
    if (!arguments.get(0).isObject() || !JS::IsCallable(&arguments[0].toObject()))
        throwBuiltIn("TypeError", QStringLiteral("setTimeout() requires a function"));
    double milliseconds = 0;
    checked(arguments.length() < 2 || JS::ToNumber(context, arguments[1], &milliseconds));
    JS::RootedObject function(context, &arguments[0].toObject());
    return JS::Int32Value(Engine::self().jobs().addTimer(function, milliseconds));
}

JS::Value clearTimer(const JS::CallArgs& arguments) {
    if (arguments.get(0).isInt32())
        Engine::self().jobs().removeTimer(arguments[0].toInt32());
    return JS::UndefinedValue();
}

/// Text as it is, without an end of line.
JS::Value writeText(const JS::CallArgs& arguments) {
    const QString text = fromJsString(checked(JS::ToString(engineContext(), arguments.get(0))));
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->output().write(ScriptOutput::Stdout, text);
    return JS::UndefinedValue();
}

bool exitScript(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    int status = 0;
    if (!JS::ToInt32(context, arguments.get(0), &status))
        return false;
    return Engine::self().exitNow(status);
}

constexpr NativeRow ownFunctions[] = {{"write", native<writeText>}, {"exit", exitScript}};

constexpr NativeRow consoleFunctions[] = {
    {"log", native<writeLine<ScriptOutput::Stdout>>},
    {"info", native<writeLine<ScriptOutput::Stdout>>},
    {"debug", native<writeLine<ScriptOutput::Stdout>>},
    {"warn", native<writeLine<ScriptOutput::Stderr>>},
    {"error", native<writeLine<ScriptOutput::Stderr>>},
};

constexpr NativeRow globalFunctions[] = {
    {"print", native<writeLine<ScriptOutput::Stdout>>},
    {"setTimeout", native<setTimer>},
    {"clearTimeout", native<clearTimer>},
};

}  // namespace

JSObject* addScriptLibrary(JS::HandleObject global) {
    JSContext* const context = engineContext();
    JS::RootedObject console(context, checked(JS_NewPlainObject(context)));
    defineFunctions(console, consoleFunctions);
    defineProperty(global, QStringLiteral("console"), JS::ObjectValue(*console), 0);
    defineFunctions(global, globalFunctions);
    addStepFunctions(global);

    JS::RootedValue function(context, evaluateOwn(QString::fromLatin1(source), "<tamrix>"));
    JS::RootedObject scopes(context, checked(JS_NewPlainObject(context)));
    addScopeFunctions(scopes);
    JS::RootedObject own(context, checked(JS_NewPlainObject(context)));
    defineFunctions(own, ownFunctions, JSPROP_ENUMERATE);
    JS::RootedValueArray<2> arguments(context);
    arguments[0].setObject(*scopes);
    arguments[1].setObject(*own);
    JS::RootedValue made(context);
    checked(JS::Call(context, JS::UndefinedHandleValue, function, arguments, &made));
    return &made.toObject();
}

}  // namespace Tamrix::JavaScriptPlugin
