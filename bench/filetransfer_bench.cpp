// Upload and download of a large file through a server on the loopback, against the program sftp on
// the same server in turn. The server, its keys and the folder are this program's own.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>

#include "runner/remote/sshsystem.h"
#include "support/sshserver.h"

namespace {

constexpr qint64 fileSize = qint64{1} << 30;
constexpr int rounds = 3;

double megabytesPerSecond(qint64 nanoseconds) {
    return static_cast<double>(fileSize) / 1e6 / (static_cast<double>(nanoseconds) / 1e9);
}

bool writeLargeFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray chunk(1 << 20, Qt::Uninitialized);
    quint32 state = 1;
    for (qint64 written = 0; written < fileSize; written += chunk.size()) {
        for (char& byte : chunk) {
            state = state * 1664525 + 1013904223;
            byte = static_cast<char>(state >> 24);
        }
        if (file.write(chunk) != chunk.size())
            return false;
    }
    return true;
}

/// Of several rounds the fastest; -1 when one fails.
template <typename Transfer>
double fastest(const QString& target, const Transfer& transfer) {
    double best = -1;
    for (int round = 0; round < rounds; ++round) {
        QFile::remove(target);
        QElapsedTimer timer;
        timer.start();
        if (!transfer())
            return -1;
        best = std::max(best, megabytesPerSecond(timer.nsecsElapsed()));
    }
    return best;
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    const Tamrix::Test::SshServer server;
    const QTemporaryDir folder;
    const QString source = folder.filePath("source");
    const QString target = folder.filePath("target");
    if (!writeLargeFile(source)) {
        std::fprintf(stderr, "no place for the file\n");
        return 1;
    }
    auto system = Tamrix::SshSystem::connect({"127.0.0.1", server.port()});
    if (!system) {
        std::fprintf(stderr, "%s\n", qPrintable(system.error().text));
        return 1;
    }
    const auto sftp = [&](const QString& command) {
        QProcess process;
        process.start("sftp",
                      {"-q", "-b", "-", "-P", QString::number(server.port()), "-i",
                       server.home() + "/.ssh/id_ed25519", "-o",
                       "UserKnownHostsFile=" + server.home() + "/.ssh/known_hosts", "127.0.0.1"});
        process.write(command.toLocal8Bit() + '\n');
        process.closeWriteChannel();
        return process.waitForFinished(-1) && process.exitCode() == 0;
    };
    struct Row {
        const char* name;
        double ours;
        double theirs;
    };
    const Row rows[] = {
        {"upload", fastest(target, [&] { return bool((*system)->upload(source, target)); }),
         fastest(target, [&] { return sftp("put " + source + ' ' + target); })},
        {"download", fastest(target, [&] { return bool((*system)->download(source, target)); }),
         fastest(target, [&] { return sftp("get " + source + ' ' + target); })}};
    int failed = 0;
    for (const Row& row : rows) {
        std::printf("%-8s  %6.0f MB/s, sftp %6.0f MB/s: %.2f of it\n", row.name, row.ours,
                    row.theirs, row.ours / row.theirs);
        failed += row.ours <= 0 || row.theirs <= 0 ? 1 : 0;
    }
    return failed == 0 ? 0 : 1;
}
