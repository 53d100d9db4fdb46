#include "runner/farm/bundles.h"

#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/testresult.h"
#include "runner/farm/opencases.h"

namespace Tamrix {

namespace {

/// More missing shards than these are not told one by one.
constexpr int mostTold = 20;

/// Sees what a bundle holds.
class BundleReader : public ReportGenerator {
public:
    explicit BundleReader(Bundle* bundle) : m_bundle(bundle) {}

    void add(const ReportEntry& entry) override {
        if (entry.time.isValid() && (m_bundle->last.isNull() || entry.time > m_bundle->last))
            m_bundle->last = entry.time;
        if (const auto* suite = eventOf<SuiteStarted>(entry)) {
            m_bundle->suite = suite->name;
            m_bundle->folder = suite->folder;
            m_bundle->first = entry.time;
        }
        const auto* const fact = eventOf<EnvironmentFact>(entry);
        if (fact && fact->name == QLatin1String(shardFactName))
            m_bundle->shard = fact->fact;
        if (const auto* started = eventOf<CaseStarted>(entry)) {
            m_case = started->name;
            ++m_bundle->open[m_case];
        }
        if (eventOf<CaseEnded>(entry) && m_bundle->open.contains(m_case)) {
            if (--m_bundle->open[m_case] == 0)
                m_bundle->open.remove(m_case);
            ++m_bundle->ended[m_case];
        }
        if (eventOf<SuiteEnded>(entry))
            m_bundle->hasEnded = true;
    }

private:
    Bundle* m_bundle;
    QString m_case;
};

/// Hands on what belongs to the cases of one bundle.
class OwnCases : public ReportGenerator {
public:
    OwnCases(ReportGenerator* report, size_t bundle, const QHash<QString, size_t>& owners,
             std::vector<EnvironmentFact>* facts)
        : m_report(report), m_bundle(bundle), m_owners(owners), m_facts(facts) {}

    void add(const ReportEntry& entry) override {
        if (eventOf<SuiteStarted>(entry) || eventOf<SuiteEnded>(entry))
            return;
        if (const auto* started = eventOf<CaseStarted>(entry)) {
            m_isCase = true;
            m_isOwn = m_owners.value(started->name, m_bundle) == m_bundle;
        }
        const auto* const fact = eventOf<EnvironmentFact>(entry);
        if (fact && !m_isCase) {
            if (std::find(m_facts->begin(), m_facts->end(), *fact) != m_facts->end())
                return;
            m_facts->push_back(*fact);
        }
        if (!m_isCase || m_isOwn)
            m_report->add(entry);
        if (eventOf<CaseEnded>(entry))
            m_isCase = false;
    }

private:
    ReportGenerator* m_report;
    size_t m_bundle;
    const QHash<QString, size_t>& m_owners;
    std::vector<EnvironmentFact>* m_facts;
    bool m_isCase = false;
    bool m_isOwn = false;
};

/// A shard as its run tells it.
struct ShardFact {
    int number = 0;
    int count = 0;
    int cases = 0;
    QString division;
};

ShardFact parseFact(const QString& text) {
    static const QRegularExpression form(QStringLiteral(
        "\\A([0-9]{1,6})/([0-9]{1,6}) of ([0-9]{1,9}) cases, division ([0-9a-f]+)\\z"));
    const QRegularExpressionMatch match = form.match(text);
    return {match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt(),
            match.captured(4)};
}

}  // namespace

QString BundleMerge::suite() const {
    return m_bundles.empty() ? QString() : m_bundles.front().suite;
}

void BundleMerge::add(const QString& path) {
    Bundle bundle;
    const QFileInfo info(path);
    bundle.journal = info.isDir() ? path + QLatin1String("/journal.jsonl") : path;
    if (!QFileInfo(bundle.journal).isFile()) {
        addGap(QStringLiteral("there is no journal '%1'").arg(bundle.journal));
        return;
    }
    BundleReader seen(&bundle);
    RunEnd end(&seen);
    JournalReader reader(&end);
    if (!reader.replay(bundle.journal))
        addGap(reader.errorText());
    end.addOpenCases(bundle.journal);
    if (bundle.suite.isEmpty()) {
        addGap(QStringLiteral("'%1' ends before its suite begins").arg(bundle.journal));
        return;
    }
    if (!m_bundles.empty() && bundle.suite != suite()) {
        m_problems += QStringLiteral("'%1' is of the suite '%2', not of '%3', and left out")
                          .arg(bundle.journal, bundle.suite, suite());
        return;
    }
    m_bundles.push_back(std::move(bundle));
}

void BundleMerge::addGap(const QString& text) {
    m_problems += text;
    m_gaps += text;
}

void BundleMerge::checkEnds() {
    for (const Bundle& bundle : m_bundles) {
        if (bundle.hasEnded)
            continue;
        const QString text =
            QStringLiteral("the run of '%1' did not come to its end").arg(bundle.journal);
        // Unless the shard ran once more.
        const bool isReplaced =
            !bundle.shard.isEmpty() &&
            std::any_of(m_bundles.begin(), m_bundles.end(), [&](const Bundle& other) {
                return other.hasEnded && other.shard == bundle.shard;
            });
        if (isReplaced)
            m_problems += text;
        else
            addGap(text);
    }
}

void BundleMerge::checkShards() {
    QMap<int, QString> seen;
    QSet<QString> cases;
    ShardFact first;
    for (const Bundle& bundle : m_bundles) {
        for (auto each = bundle.ended.begin(); each != bundle.ended.end(); ++each)
            cases.insert(each.key());
        if (bundle.shard.isEmpty())
            continue;
        const ShardFact fact = parseFact(bundle.shard);
        if (first.count == 0)
            first = fact;
        if (fact.division != first.division || fact.count != first.count) {
            addGap(QStringLiteral("'%1' is a shard of another division of the suite (%2)")
                       .arg(bundle.journal, bundle.shard));
        } else if (seen.contains(fact.number)) {
            m_problems +=
                QStringLiteral("'%1' is the shard %2, as '%3'")
                    .arg(bundle.journal, QString::number(fact.number), seen.value(fact.number));
        } else {
            seen.insert(fact.number, bundle.journal);
        }
    }
    if (first.count == 0)
        return;
    QStringList missing;
    for (int number = 1; number <= first.count; ++number) {
        if (!seen.contains(number))
            missing += QString::number(number);
    }
    if (!missing.isEmpty()) {
        QStringList told = missing.mid(0, mostTold);
        if (missing.size() > mostTold)
            told += QStringLiteral("and %1 more").arg(missing.size() - mostTold);
        addGap(QStringLiteral("of %1 shards are missing: %2")
                   .arg(QString::number(first.count), told.join(QLatin1String(", "))));
    }
    if (cases.size() < first.cases) {
        addGap(QStringLiteral("%1 of %2 test cases have no result")
                   .arg(QString::number(first.cases - cases.size()), QString::number(first.cases)));
    }
}

QHash<QString, size_t> BundleMerge::owners() const {
    // The first in which the case came to its end; where it did so in none, the first.
    QHash<QString, size_t> owners;
    for (const bool wantsEnd : {true, false}) {
        for (size_t index = 0; index < m_bundles.size(); ++index) {
            const Bundle& bundle = m_bundles[index];
            const QHash<QString, int>& cases = wantsEnd ? bundle.ended : bundle.open;
            for (auto each = cases.begin(); each != cases.end(); ++each) {
                const bool isWhole = !wantsEnd || !bundle.open.contains(each.key());
                if (isWhole && !owners.contains(each.key()))
                    owners.insert(each.key(), index);
            }
        }
    }
    return owners;
}

std::pair<QDateTime, QDateTime> BundleMerge::timeSpan() const {
    std::pair<QDateTime, QDateTime> span;
    for (const Bundle& bundle : m_bundles) {
        if (span.first.isNull() || bundle.first < span.first)
            span.first = bundle.first;
        if (span.second.isNull() || bundle.last > span.second)
            span.second = bundle.last;
    }
    return span;
}

void BundleMerge::merge() {
    checkEnds();
    checkShards();
    const QHash<QString, size_t> cases = owners();
    std::vector<EnvironmentFact> facts;
    const auto [first, last] = timeSpan();
    if (!m_bundles.empty())
        m_report->add({first, SuiteStarted{suite(), m_bundles.front().folder}});
    for (size_t index = 0; index < m_bundles.size(); ++index) {
        OwnCases own(m_report, index, cases, &facts);
        RunEnd end(&own);
        // What could not be read has been told.
        JournalReader(&end).replay(m_bundles[index].journal);
        end.addOpenCases(m_bundles[index].journal);
    }
    for (const QString& gap : m_gaps) {
        ResultAdded error;
        error.type = TestResult::Error;
        error.message = QStringLiteral("Results are missing");
        error.detail = gap;
        m_report->add({last, error});
    }
    m_report->add({last, SuiteEnded{}});
}

}  // namespace Tamrix
