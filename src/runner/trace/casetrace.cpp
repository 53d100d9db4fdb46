#include "runner/trace/casetrace.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "base/overloaded.h"
#include "base/utf8.h"
#include "base/wholetext.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "runner/trace/tracedobjects.h"
#include "runner/trace/tracefolder.h"

namespace Tamrix {

namespace {

/// Of a text of a result or of output, in characters; the journal has all of it.
constexpr int longestText = 20000;
/// Of a script whose lines the page shows, in bytes.
constexpr qint64 largestSource = 1 << 20;
/// In bytes.
constexpr int longestUtf8Character = 4;

/// Functions behind which the page marks where the mouse was pressed.
const QStringList& pressingFunctions() {
    static const QStringList s_functions = {
        QStringLiteral("click"),      QStringLiteral("doubleClick"), QStringLiteral("drag"),
        QStringLiteral("mousePress"), QStringLiteral("check"),       QStringLiteral("uncheck"),
        QStringLiteral("selectItem")};
    return s_functions;
}

QString shortened(const QString& text) {
    return text.size() > longestText ? text.left(longestText) + QStringLiteral("...") : text;
}

/// How much of the bytes is told now: an end that may be the beginning of a secret or of a
/// character waits for what follows.
int tellableLength(const QByteArray& bytes, const QStringList& secrets) {
    int held = 0;
    for (const QString& secret : secrets) {
        const QByteArray whole = secret.toUtf8();
        for (int length = std::min(whole.size() - 1, bytes.size()); length > held; --length) {
            if (bytes.endsWith(whole.left(length)))
                held = length;
        }
    }
    for (int length = std::min(longestUtf8Character - 1, bytes.size()); length > held; --length) {
        const char* const begin = bytes.end() - length;
        if ((static_cast<unsigned char>(*begin) & 0xC0) == 0xC0 &&
            utf8CharacterLength(begin, bytes.end()) == 0)
            held = length;
    }
    return bytes.size() - held;
}

/// The name of its file, or those of the base and of the change that lies on it.
QVariant toldTile(const Tile& tile) {
    return tile.change.isEmpty() ? QVariant(tile.base) : QVariantList{tile.base, tile.change};
}

QVariantList toldTiles(const std::vector<Tile>& tiles) {
    QVariantList told;
    for (const Tile& tile : tiles)
        told.append(toldTile(tile));
    return told;
}

QString isoTime(const QDateTime& time) {
    return time.toString(Qt::ISODateWithMs);
}

}  // namespace

CaseTrace::CaseTrace(TraceMode mode, const QString& folder, const TraceView& view,
                     ReportGenerator* report)
    : m_mode(mode), m_folder(folder), m_view(view), m_report(report) {}

void CaseTrace::give(const Outcome<>& outcome) {
    if (outcome)
        return;
    qWarning("The trace ends: %s", qUtf8Printable(outcome.error().text));
    m_mode = TraceMode::Off;
    m_case.clear();
}

void CaseTrace::add(const ReportEntry& entry) {
    m_report->add(entry);
    if (m_mode == TraceMode::Off)
        return;
    if (const auto* const start = eventOf<CaseStarted>(entry)) {
        startCase(entry, *start);
        return;
    }
    if (m_case.isEmpty())
        return;
    const auto text = [](const char* kind, const QString& title, const QString& detail = {}) {
        return Fields{{"kind", kind}, {"title", title}, {"detail", detail}};
    };
    std::visit(
        Overloaded{
            [&](const CaseEnded& end) { endCase(entry, end); },
            [&](const ActionEnded& action) { addAction(entry, action); },
            [&](const ResultAdded& result) { addResult(entry, result); },
            [&](const SectionStarted& section) {
                addOther(entry, text("section", section.title, section.description));
            },
            [&](const SectionEnded& section) { addOther(entry, text("end", section.title)); },
            [&](const OutputWritten& output) {
                addOther(entry,
                         text(output.stream == OutputStream::StandardError ? "stderr" : "stdout",
                              output.text));
            },
            // What else there is belongs to a report.
            [](const auto&) {},
        },
        entry.event);
}

// Cases

void CaseTrace::startCase(const ReportEntry& entry, const CaseStarted& start) {
    const Outcome<QString> name = createCaseFolder(m_folder);
    if (!name) {
        give(fail(name.error()));
        return;
    }
    m_case = *name;
    m_start = entry.time;
    m_steps = 0;
    m_hasFailed = false;
    m_isSilent = false;
    m_objects.clear();
    m_heldOutput.clear();
    m_sources.clear();
    // Until it is known that the case is kept, its pictures are not others'.
    QString tiles = m_folder + QStringLiteral("/tiles");
    if (m_mode == TraceMode::Failed) {
        tiles = QStringLiteral("%1/%2/tiles").arg(m_folder, m_case);
        QDir().mkpath(tiles);
    }
    m_tiles = std::make_unique<TileStore>(tiles);
    const QJsonObject facts = {{QStringLiteral("id"), m_case},
                               {QStringLiteral("name"), start.name},
                               {QStringLiteral("script"), start.script},
                               {QStringLiteral("attempt"), start.attempt},
                               {QStringLiteral("time"), isoTime(entry.time)}};
    give(appendCall(m_folder + QStringLiteral("/cases.js"), "traceCase",
                    QJsonDocument(facts).toJson(QJsonDocument::Compact)));
}

void CaseTrace::endCase(const ReportEntry& entry, const CaseEnded& end) {
    const bool isKept = m_mode == TraceMode::On || m_hasFailed || end.isInterrupted;
    Outcome<> outcome;
    if (!isKept) {
        QDir(m_folder + QLatin1Char('/') + m_case).removeRecursively();
    } else if (m_mode == TraceMode::Failed) {
        outcome = m_tiles->moveTo(m_folder + QStringLiteral("/tiles"));
        QDir(m_folder).rmdir(m_case + QStringLiteral("/tiles"));
    }
    const QJsonObject facts = {
        {QStringLiteral("id"), m_case},
        {QStringLiteral("outcome"), end.isInterrupted ? QStringLiteral("interrupted")
                                    : m_hasFailed     ? QStringLiteral("failed")
                                                      : QStringLiteral("passed")},
        {QStringLiteral("kept"), isKept},
        {QStringLiteral("milliseconds"), m_start.msecsTo(entry.time)}};
    if (outcome)
        outcome = appendCall(m_folder + QStringLiteral("/cases.js"), "traceCaseEnds",
                             QJsonDocument(facts).toJson(QJsonDocument::Compact));
    m_case.clear();
    give(outcome);
}

// Steps

void CaseTrace::addAction(const ReportEntry& entry, const ActionEnded& action) {
    addSource(action.position);
    if (!action.hasFailed)
        m_isSilent = false;
    addStep(entry,
            {{"kind", "action"},
             {"title", action.function},
             {"arguments", action.arguments},
             {"milliseconds", action.milliseconds},
             {"failed", action.hasFailed},
             {"file", action.position.fileName()},
             {"line", action.position.lineNumber()}},
            true, pressingFunctions().contains(action.function) && !action.hasFailed);
}

void CaseTrace::addResult(const ReportEntry& entry, const ResultAdded& result) {
    const bool hasFailed = isFailure(result);
    m_hasFailed = m_hasFailed || hasFailed;
    const LineInfo position = result.callStack.empty() ? LineInfo() : result.callStack.front();
    addSource(position);
    QString message = result.message;
    takeScreenshotNote(&message);
    // A verdict that passed changes nothing, and there may be many.
    addStep(entry,
            {{"kind", "result"},
             {"type", resultTypeName(result.type)},
             {"title", shortened(message)},
             {"detail", shortened(result.detail)},
             {"explanation", shortened(result.explanation)},
             {"failed", hasFailed},
             {"file", position.fileName()},
             {"line", position.lineNumber()}},
            hasFailed, false);
}

void CaseTrace::addOther(const ReportEntry& entry, const Fields& fields) {
    Fields shown = fields;
    for (const char* const name : {"title", "detail"})
        shown[name] = shortened(shown.value(name).toString());
    addStep(entry, shown, false, false);
}

QString CaseTrace::stepsPath() const {
    const int number = (m_steps + stepsInFile - 1) / stepsInFile;
    return QStringLiteral("%1/%2/steps-%3.js")
        .arg(m_folder, m_case, QString::number(number).rightJustified(4, QLatin1Char('0')));
}

void CaseTrace::addStep(const ReportEntry& entry, Fields fields, bool looks, bool marksPress) {
    if (m_mode != TraceMode::Off)
        give(tryAddStep(entry, std::move(fields), looks, marksPress));
}

Outcome<> CaseTrace::tryAddStep(const ReportEntry& entry, Fields fields, bool looks,
                                bool marksPress) {
    const bool isWhole = m_steps % stepsInFile == 0;
    ++m_steps;
    fields.insert("time", isoTime(entry.time));
    fields.insert("at", m_start.msecsTo(entry.time));
    QByteArray objects;
    if (looks && !m_isSilent && m_view.answers()) {
        if (const Outcome<> added = addPicture(fields, isWhole, marksPress); !added)
            return added;
        objects = objectsMember(isWhole);
    } else {
        m_isSilent = m_isSilent || looks;
        // The first of a file repeats what the last look has found.
        if (isWhole && !m_tiles->tiles().empty()) {
            const QSize size = m_tiles->size();
            fields.insert("size", QVariantList{size.width(), size.height()});
            fields.insert("tiles", toldTiles(m_tiles->tiles()));
            fields.insert("native", m_native);
        }
        if (isWhole && !m_objects.empty())
            objects = "\"tree\":" + allObjects(m_objects);
    }
    addOutput(fields);
    QByteArray json =
        QJsonDocument(QJsonObject::fromVariantMap(fields)).toJson(QJsonDocument::Compact);
    if (!objects.isEmpty()) {
        json.chop(1);
        json += ',' + objects + '}';
    }
    return appendCall(stepsPath(), "traceStep", json);
}

Outcome<> CaseTrace::addPicture(Fields& fields, bool isWhole, bool marksPress) {
    const Screenshot picture = m_view.picture();
    if (picture.image().isNull())
        return {};
    const QSize before = m_tiles->size();
    const Outcome<std::vector<TileStore::Change>> changes = m_tiles->add(picture.image());
    if (!changes)
        return fail(changes.error());
    const QSize size = m_tiles->size();
    if (isWhole || size != before) {
        fields.insert("size", QVariantList{size.width(), size.height()});
        fields.insert("tiles", toldTiles(m_tiles->tiles()));
        // From pixels to where objects are, for frames around them.
        const QPoint origin = picture.imageToNative(QPoint(0, 0));
        const QPoint end = picture.imageToNative(QPoint(size.width(), size.height()));
        m_native = QVariantList{origin.x(), origin.y(), end.x(), end.y()};
        fields.insert("native", m_native);
    } else if (!changes->empty()) {
        QVariantMap changed;
        for (const TileStore::Change& change : *changes)
            changed.insert(QString::number(change.index), toldTile(change.tile));
        fields.insert("changed", changed);
    }
    if (marksPress) {
        if (const std::optional<QPoint> press = m_view.lastPress()) {
            const QPoint point = picture.nativeToImage(*press);
            fields.insert("point", QVariantList{point.x(), point.y()});
        }
    }
    return {};
}

QByteArray CaseTrace::objectsMember(bool isWhole) {
    const std::optional<Wire::ObjectListing> listing = m_view.objects();
    if (!listing)
        return {};
    TracedObjects objects =
        tracedObjects(*listing, [this](const QString& text) { return m_secrets.hidden(text); });
    QByteArray member;
    if (isWhole || m_objects.empty())
        member = "\"tree\":" + allObjects(objects);
    else if (const QByteArray changes = objectChanges(m_objects, objects); !changes.isEmpty())
        member = "\"treeChanges\":" + changes;
    m_objects = std::move(objects);
    return member;
}

void CaseTrace::addOutput(Fields& fields) {
    const QMap<QString, QByteArray> streams = m_view.output();
    QVariantMap output;
    for (auto stream = streams.begin(); stream != streams.end(); ++stream) {
        QByteArray& held = m_heldOutput[stream.key()];
        QByteArray bytes = held + *stream;
        // What did not go on is told as it is.
        const int told =
            stream->isEmpty() ? bytes.size() : tellableLength(bytes, m_secrets.forms());
        held = bytes.mid(told);
        bytes.truncate(told);
        if (!bytes.isEmpty())
            output.insert(stream.key(), shortened(m_secrets.hidden(wholeUtf8(bytes))));
    }
    if (!output.isEmpty())
        fields.insert("output", output);
}

void CaseTrace::addSource(const LineInfo& position) {
    const QString path = position.fileName();
    if (!position.isValid() || m_sources.contains(path))
        return;
    m_sources.insert(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestSource)
        return;
    const QJsonObject source = {
        {QStringLiteral("path"), path},
        {QStringLiteral("text"), m_secrets.hidden(wholeUtf8(file.readAll()))}};
    give(appendCall(QStringLiteral("%1/%2/sources.js").arg(m_folder, m_case), "traceSource",
                    QJsonDocument(source).toJson(QJsonDocument::Compact)));
}

}  // namespace Tamrix
