#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix {

/// Why a request to an application gave no answer.
struct RequestError {
    enum class Kind {
        Disconnected,  ///< the connection or the process has ended
        TimedOut,      ///< no answer in time; the connection stands
        Stalled,       ///< the same for a request with little patience
        Aborted,       ///< the idle hook gave up
        Refused,       ///< the application answered that it can't: see `code`
        Malformed      ///< the answer can't be read
    };

    Kind kind = Kind::Disconnected;
    /// Meaningful for Refused only.
    FailureKind code = FailureKind::Failed;
    /// For the tester.
    QString text;

    bool isRefused(FailureKind wanted) const { return kind == Kind::Refused && code == wanted; }
};

}  // namespace Tamrix
