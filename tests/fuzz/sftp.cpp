// What a server sends: the stream of SFTP with all bodies, and what a shell says before a program
// starts.

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "runner/remote/sftpmessages.h"
#include "runner/remote/shellscript.h"

using namespace Tamrix;

namespace {

void readAll(const QByteArray& body) {
    Sftp::Status status;
    Sftp::readStatus(body, &status);
    QByteArray bytes;
    Sftp::readHandle(body, &bytes);
    if (Sftp::readData(body, &bytes))
        fuzzRequire(bytes.size() <= body.size(), "data stands in the body");
    QList<QByteArray> names;
    Sftp::readNames(body, &names);
    fuzzRequire(names.size() <= body.size(), "each name takes bytes");
    PathFacts facts;
    Sftp::readAttributes(body, &facts);
    QMap<QByteArray, QByteArray> extensions;
    Sftp::readExtensions(body, &extensions);
    Sftp::Limits limits;
    Sftp::readLimits(body, &limits);
    bool isFull = false;
    Sftp::readIsFull(body, &isFull);
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceQt();
    const char* const bytes = reinterpret_cast<const char*>(data);
    Sftp::Inbox inbox;
    inbox.append(bytes, static_cast<int>(size));
    for (auto reply = inbox.take(); reply && *reply; reply = inbox.take())
        readAll((*reply)->body);
    ShellOutput output(SystemCommand{{QStringLiteral("program")}});
    // In two pieces.
    const auto half = static_cast<int>(size / 2);
    if (output.append(bytes, half) && output.append(bytes + half, static_cast<int>(size) - half))
        fuzzRequire(!output.hasStarted() || output.process() > 1, "no process beyond the program");
    return 0;
}
