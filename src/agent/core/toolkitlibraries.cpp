#include "agent/core/toolkitlibraries.h"

#include <dlfcn.h>

#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "agent/core/qtversion.h"
#include "agent/core/session.h"

namespace Tamrix::Agent {

namespace {

/// The folder of the agent's own library.
QString ownFolder() {
    Dl_info info;
    return ::dladdr(reinterpret_cast<const void*>(&ownFolder), &info) != 0
               ? QFileInfo(QFile::decodeName(info.dli_fname)).path()
               : QString();
}

/// A toolkit, and the library of ours that knows it.
struct ToolkitLibrary {
    const char* toolkit;
    /// Without what tells the version of Qt.
    const char* name;
    /// Its function, of the type of those in the header.
    const char* function;
    /// For people, when the library can't be loaded.
    const char* whatItSees;
    bool isDone = false;
};

ToolkitLibrary s_libraries[] = {
    {widgetsLibrary, "libtamrixagentwidgets", "tamrixAgentAddWidgets", "widgets"},
    {quickLibrary, "libtamrixagentquick", "tamrixAgentAddQuick", "Qt Quick"},
};

bool isInProcess(const char* library) {
    void* const handle = ::dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle)
        ::dlclose(handle);
    return handle != nullptr;
}

void load(const ToolkitLibrary& entry, Session* session) {
    const QByteArray path =
        QFile::encodeName(ownFolder() + QLatin1Char('/') + QLatin1String(entry.name) +
                          QLatin1String(agentSuffix) + QLatin1String(".so"));
    void* const library = ::dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
    void* const function = library ? ::dlsym(library, entry.function) : nullptr;
    if (function)
        reinterpret_cast<void (*)(Session*)>(function)(session);
    else
        std::fprintf(stderr, "tamrixagent: no view of %s: %s\n", entry.whatItSees, ::dlerror());
}

}  // namespace

void loadToolkitLibraries(Session* session) {
    for (ToolkitLibrary& entry : s_libraries) {
        if (entry.isDone || !isInProcess(entry.toolkit))
            continue;
        entry.isDone = true;
        load(entry, session);
    }
}

}  // namespace Tamrix::Agent
