#pragma once

#include <map>

#include "base/export.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/runtally.h"

class QXmlStreamWriter;

namespace Tamrix {

/// JUnit XML for continuous integration servers. A case becomes a testcase element, its failures
/// one failure or error element. What happened outside the cases becomes a testcase of the suite's
/// own name when it failed. Keeps the run in memory until finish().
class TAMRIX_EXPORT JUnitReport : public ReportGenerator {
public:
    /// A relative path counts from the current working directory. Missing folders are created; the
    /// file itself is touched by finish() only.
    explicit JUnitReport(const QString& path);
    ~JUnitReport() override;

    void add(const ReportEntry& entry) override;
    /// Writes the file beside its place and moves it there, so that an earlier one stays until the
    /// new one is whole.
    void finish() override;
    QString errorText() const override { return m_error; }

private:
    /// What the elements system-out and system-err hold.
    struct Texts {
        QString out;
        QString err;
    };

    void addLine(Texts& texts, const QString& line);
    void writeSuite(QXmlStreamWriter& xml, const SuiteTally& suite) const;
    void writeCase(QXmlStreamWriter& xml, const CaseTally& testCase, const QString& suiteName,
                   bool isSuiteItself) const;
    void writeTexts(QXmlStreamWriter& xml, int id) const;

    QString m_path;
    QString m_error;
    RunTally m_tally;
    /// By CaseTally::id.
    std::map<int, Texts> m_texts;
};

}  // namespace Tamrix
