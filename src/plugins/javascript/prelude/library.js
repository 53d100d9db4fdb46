// What scripts find beside the functions of the library.
(function (steps, own) {
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
const kept = name => typeof name === "string" ? steps._find(name) : null;
const context = new Proxy({}, {
    get: (target, name) => kept(name)?.[0],
    set(target, name, value) { steps._set(String(name), value); return true; },
    has: (target, name) => kept(name) !== null,
    deleteProperty: (target, name) => steps._remove(String(name)),
    ownKeys: () => Object.keys(steps._all()),
    getOwnPropertyDescriptor: (target, name) => kept(name)
        ? {value: kept(name)[0], writable: true, enumerable: true, configurable: true}
        : undefined,
});
// The rows of a step's table as objects, from all rows.
function makeTable(raw) {
    const [headers, ...cells] = raw;
    const table = cells.map(row => Object.fromEntries(headers.map((name, at) => [name, row[at]])));
    // No reference to itself: a list of the same rows.
    for (const [name, value] of Object.entries({headers, raw, rows: [...table]}))
        Object.defineProperty(table, name, {value, writable: true, configurable: true});
    return table;
}
return {classes: Object.freeze(tamrix), context, makeTable};
})
