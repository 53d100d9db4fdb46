#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// Several report generators as one. Owns them. One that can't write any more doesn't hinder the
/// others.
class TAMRIX_EXPORT CompositeReport : public ReportGenerator {
public:
    /// Null is ignored.
    void append(std::unique_ptr<ReportGenerator> generator);
    /// Is called with a generator's error text when it fails, once for each, and at once. It must
    /// not add entries.
    void setErrorHandler(std::function<void(const QString&)> handler);
    bool isEmpty() const { return m_parts.empty(); }

    /// All operations go to the generators in the order in which they were appended.
    void add(const ReportEntry& entry) override;
    void finish() override;
    /// The error texts of all, one a line.
    QString errorText() const override;
    /// The first generator gives the device.
    QIODevice* openVideo(const QString& targetPath, QString* error) override;

private:
    struct Part {
        std::unique_ptr<ReportGenerator> generator;
        bool hasFailed = false;
    };

    void noticeFailure(Part& part);

    std::vector<Part> m_parts;
    std::function<void(const QString&)> m_errorHandler;
};

}  // namespace Tamrix
