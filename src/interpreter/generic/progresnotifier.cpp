#include "interpreter/generic/progresnotifier.h"

#include "interpreter/bridge/debugger.h"

namespace Tamrix {

bool ProgresNotifier::isWanted() {
    return Debugger::self() && Debugger::self()->progressNotification();
}

ProgresNotifier::ProgresNotifier() {
    connect(this, &ProgressReporter::canceled, this, [this] { m_isCanceled = true; });
}

void ProgresNotifier::report(int percent) {
    if (Debugger* const debugger = Debugger::self())
        debugger->notify(QStringLiteral("Progress"), QStringLiteral("%1 OCR").arg(percent));
}

}  // namespace Tamrix
