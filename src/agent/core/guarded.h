#pragma once

#include <exception>

#include "agent/core/session.h"

namespace Tamrix::Agent {

/// Does work on a request below which code of the application runs: nothing that throws may pass
/// Qt's event loop, so the request fails with it.
template <typename Work>
void guarded(const ResponderPtr& responder, Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        responder->fail(FailureKind::Failed, QString::fromLocal8Bit(error.what()));
    } catch (...) {
        responder->fail(FailureKind::Failed,
                        QStringLiteral("the application threw an exception of unknown type"));
    }
}

}  // namespace Tamrix::Agent
