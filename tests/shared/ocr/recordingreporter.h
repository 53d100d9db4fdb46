#pragma once

#include <QList>

#include "shared/ocr/progressreporter.h"

namespace Tamrix::OCR {

/// Writes down what it is told, and says cancel from the report of a certain progress on.
class RecordingReporter : public ProgressReporter {
public:
    explicit RecordingReporter(int cancelAt = -1) : m_cancelAt(cancelAt) {
        connect(this, &ProgressReporter::canceled, this, [this] { m_isCanceled = true; });
    }
    void report(int percent) override {
        reports.append(percent);
        m_isCanceled = m_isCanceled || percent == m_cancelAt;
    }
    bool isCanceled() const override { return m_isCanceled; }

    QList<int> reports;

private:
    int m_cancelAt;
    bool m_isCanceled = false;
};

}  // namespace Tamrix::OCR
