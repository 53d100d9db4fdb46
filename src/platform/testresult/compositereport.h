#pragma once

#include <memory>
#include <vector>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// Several report generators as one. Owns them.
class TAMRIX_EXPORT CompositeReport : public ReportGenerator {
public:
    /// Null is passed over.
    void append(std::unique_ptr<ReportGenerator> generator);
    bool isEmpty() const { return m_generators.empty(); }

    /// All operations go to the generators in the order in which they were appended.
    void add(const ReportEntry& entry) override;
    void finish() override;
    /// The error texts of all, one a line.
    QString errorText() const override;
    /// The first generator gives the device.
    QIODevice* openVideo(const QString& targetPath, QString* error) override;

private:
    std::vector<std::unique_ptr<ReportGenerator>> m_generators;
};

}  // namespace Tamrix
