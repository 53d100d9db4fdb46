#include "agent/core/quicklibrary.h"

#include <dlfcn.h>

#include <QFile>
#include <QFileInfo>
#include <cstdio>

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

}  // namespace

void loadQuickWhereItIs(Session* session) {
    static bool s_isDone = false;
    if (s_isDone)
        return;
    void* const quick = ::dlopen("libQt5Quick.so.5", RTLD_LAZY | RTLD_NOLOAD);
    if (!quick)
        return;
    ::dlclose(quick);
    s_isDone = true;
    const QByteArray path = QFile::encodeName(ownFolder() + "/libtamrixagentquick.so");
    void* const library = ::dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
    void* const function = library ? ::dlsym(library, "tamrixAgentAddQuick") : nullptr;
    if (function)
        reinterpret_cast<decltype(&tamrixAgentAddQuick)>(function)(session);
    else
        std::fprintf(stderr, "tamrixagent: no view of Qt Quick: %s\n", ::dlerror());
}

}  // namespace Tamrix::Agent
