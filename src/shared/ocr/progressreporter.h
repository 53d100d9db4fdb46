#pragma once

#include <QObject>

#include "base/export.h"

namespace Tamrix::OCR {

/// Whoever wants to know how far a recognition is, and may end it. Lives on the thread of the
/// recognition. Everywhere optional: a null pointer stands for nobody.
class TAMRIX_EXPORT ProgressReporter : public QObject {
    Q_OBJECT

public:
    /// How much is done, as far as the engine can tell. It may jump, and be above 100.
    virtual void report(int percent) = 0;
    /// Whether the recognition shall end. Engines ask between their steps.
    virtual bool isCanceled() const = 0;

Q_SIGNALS:
    /// Ends the wait for a service at once, when isCanceled() says so, too.
    void canceled();
};

/// Throws OperationCancelled if there is a reporter and it says so.
TAMRIX_EXPORT void throwIfCancelled(const ProgressReporter* progress);

}  // namespace Tamrix::OCR
