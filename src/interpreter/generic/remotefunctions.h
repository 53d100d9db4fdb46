#pragma once

#include "base/export.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

/// The script functions on other machines, which a language wraps into a class of its own. A
/// connection is an integer handle of the runner. All failures are errors of the script; nothing is
/// kept here.
class TAMRIX_EXPORT RemoteSystemApi {
public:
    static void connectToRemoteSystem(ScriptContext* context);
    static void closeRemoteSystemConnection(ScriptContext* context);
    static void getEnvironmentVariable(ScriptContext* context);
    static void getOSName(ScriptContext* context);
    static void remotePathExists(ScriptContext* context);
    static void remoteRenamePath(ScriptContext* context);
    static void remoteCreatePath(ScriptContext* context);
    static void remoteDeletePath(ScriptContext* context);
    static void remoteCreateFile(ScriptContext* context);
    static void remoteDeleteFile(ScriptContext* context);
    static void remoteCopyPath(ScriptContext* context);
    static void remoteUploadFile(ScriptContext* context);
    static void remoteDownloadFile(ScriptContext* context);
    static void getRemotePathProperty(ScriptContext* context);
    static void getRemoteDirectoryContent(ScriptContext* context);
    static void executeCommand(ScriptContext* context);
};

}  // namespace Tamrix
