#include "dap/program/journaltail.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>

namespace Tamrix::Dap {

namespace {

/// The numbers that stand for kinds of results in a journal.
struct ResultKind {
    int type;
    const char* name;
    bool isFailure;
};
constexpr ResultKind resultKinds[] = {
    {6, "Skipped", false},        {7, "Log", false},
    {8, "Fatal", true},           {9, "Error", true},
    {10, "Pass", false},          {11, "Fail", true},
    {12, "Expected fail", false}, {13, "Unexpected pass", true},
    {14, "Warning", false},
};

std::optional<ScriptPlace> placeOf(const QJsonObject& entry) {
    const QJsonObject innermost = entry.value("callStack").toArray().at(0).toObject();
    const QString file = innermost.value("file").toString();
    const int line = innermost.value("line").toInt();
    if (file.isEmpty() || line < 1)
        return std::nullopt;
    return ScriptPlace{file, line};
}

std::optional<JournalEvent> readResult(const QJsonObject& entry) {
    // A repeated skip says nothing new.
    if (entry.value("echo").toBool())
        return std::nullopt;
    const int type = entry.value("type").toInt();
    for (const ResultKind& kind : resultKinds) {
        if (kind.type == type)
            return ResultTold{QString::fromLatin1(kind.name), kind.isFailure,
                              entry.value("message").toString(), entry.value("detail").toString(),
                              placeOf(entry)};
    }
    return std::nullopt;
}

}  // namespace

std::optional<JournalEvent> readJournalLine(const QByteArray& line) {
    const QJsonObject entry = QJsonDocument::fromJson(line).object();
    const QString kind = entry.value("kind").toString();
    if (kind == QLatin1String("caseStart"))
        return CaseBegun{entry.value("message").toString()};
    if (kind == QLatin1String("caseEnd"))
        return CaseEnded{};
    if (kind == QLatin1String("result"))
        return readResult(entry);
    if (kind == QLatin1String("output"))
        return TextWritten{entry.value("message").toString(),
                           entry.value("extra").toString() == QLatin1String("stderr")};
    return std::nullopt;
}

JournalTail::JournalTail(const QString& path)
    : m_file(path), m_changes(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).path());
    if (m_changes >= 0)
        ::inotify_add_watch(m_changes, folder.constData(), IN_CREATE | IN_MODIFY);
}

JournalTail::~JournalTail() {
    if (m_changes >= 0)
        ::close(m_changes);
}

void JournalTail::watch(std::vector<pollfd>* watched) const {
    if (m_changes >= 0)
        watched->push_back({m_changes, POLLIN, 0});
}

std::vector<JournalEvent> JournalTail::take() {
    // What changed is seen in the file; the notes about it only wake.
    std::array<char, 4096> notes;
    while (m_changes >= 0 && ::read(m_changes, notes.data(), notes.size()) > 0) {
    }
    std::vector<JournalEvent> events;
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return events;
    m_buffer += m_file.readAll();
    int start = 0;
    for (int end = m_buffer.indexOf('\n'); end >= 0; end = m_buffer.indexOf('\n', start)) {
        if (std::optional<JournalEvent> event = readJournalLine(m_buffer.mid(start, end - start)))
            events.push_back(std::move(*event));
        start = end + 1;
    }
    m_buffer.remove(0, start);
    return events;
}

}  // namespace Tamrix::Dap
