// Starts `tamrixrunner dap` for a debug session. All else is the server's.

const vscode = require("vscode");

function activate(context) {
    context.subscriptions.push(
        vscode.debug.registerDebugAdapterDescriptorFactory("tamrix", {
            createDebugAdapterDescriptor(session) {
                const settings = vscode.workspace.getConfiguration("tamrix", session.workspaceFolder);
                return new vscode.DebugAdapterExecutable(settings.get("runner"), ["dap"]);
            },
        }),
        // Without a launch configuration, the test case whose script is open is meant.
        vscode.debug.registerDebugConfigurationProvider("tamrix", {
            resolveDebugConfiguration(folder, configuration) {
                if (configuration.request) {
                    return configuration;
                }
                return {
                    name: "Tamrix: this test case",
                    type: "tamrix",
                    request: "launch",
                    suite: "${fileDirname}/..",
                    cases: ["${fileDirnameBasename}"],
                };
            },
        }),
    );
}

module.exports = { activate };
