#include "interpreter/bridge/backgroundtask.h"

namespace Tamrix {

namespace {

/// For connections from one thread to another, under the names in the signatures.
void registerArgumentTypes() {
    qRegisterMetaType<VoidResult>("VoidResult");
    qRegisterMetaType<CallStack>("CallStack");
}

}  // namespace

BackgroundTask::BackgroundTask() {
    registerArgumentTypes();
}

BackgroundTask::~BackgroundTask() = default;

TaskCompleter::TaskCompleter(QObject* parent) : QObject(parent) {}

TaskCompleter::~TaskCompleter() = default;

}  // namespace Tamrix
