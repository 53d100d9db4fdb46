#pragma once

#include "base/export.h"
#include "shared/ocr/progressreporter.h"

namespace Tamrix {

/// Tells the front end of the debugger how far a recognition is. The spelling is meant.
class TAMRIX_EXPORT ProgresNotifier : public OCR::ProgressReporter {
public:
    /// Whether there is a front end that wants to know.
    static bool isWanted();

    ProgresNotifier();

    void report(int percent) override;
    /// Whether canceled() was emitted.
    bool isCanceled() const override { return m_isCanceled; }

private:
    bool m_isCanceled = false;
};

}  // namespace Tamrix
