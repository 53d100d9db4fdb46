#pragma once

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

namespace Tamrix {

/// TAP, version 14: a line for each case, and behind one that failed a block that tells why. A
/// suite that failed outside its cases has a line of its own. Written by finish(), beside its place
/// and moved there.
class TAMRIX_EXPORT TapReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. Missing folders are created.
    explicit TapReport(const QString& path);

    void add(const ReportEntry& entry) override { m_tally.add(entry); }
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    QString m_path;
    QString m_error;
    RunTally m_tally;
};

}  // namespace Tamrix
