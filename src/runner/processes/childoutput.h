#pragma once

#include <QByteArray>
#include <QString>
#include <mutex>
#include <thread>

namespace Tamrix {

/// The last bytes of a stream that may be long, and how many there were.
class OutputTail {
public:
    /// What is kept of a stream.
    static constexpr qint64 limit = 1024 * 1024;

    void append(const char* bytes, qint64 size);
    /// Drops what is kept but for the last `size` bytes, and keeps no more memory than it needs.
    void shrink(qint64 size);
    /// What is kept, behind a line that tells what was left out when that is not all.
    QByteArray content() const;
    /// What came since the last call, as content() tells it.
    QByteArray takeNew();
    qint64 total() const { return m_total; }

private:
    QByteArray lastOf(qint64 count) const;

    QByteArray m_bytes;
    qint64 m_total = 0;
    qint64 m_taken = 0;
    qint64 m_kept = limit;
};

/// Reads a program's standard output and error all the time, in a thread of its own, so that the
/// program never waits for a reader. All operations from any one thread.
class ChildOutput {
public:
    /// Takes the reading ends of two pipes, which it owns.
    ChildOutput(int standardOutput, int standardError);
    /// Reads what is there and ends, also when a process still holds the other ends.
    ~ChildOutput();
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    QByteArray standardOutput() const;
    QByteArray standardError() const;
    /// What was written since the last call.
    struct News {
        QByteArray standardOutput;
        QByteArray standardError;
    };
    News takeNews();
    /// The last lines of standard error, at most `count`, without an end of line behind them.
    QString lastErrorLines(int count) const;
    /// Waits until both streams have ended, at most this long: what a program wrote just before it
    /// ended is still to be read then.
    void waitForEnd(int milliseconds) const;
    /// Once both streams have ended, gives back the thread and the descriptors, which nothing needs
    /// any more; what was read stays. False before that.
    bool settle();
    /// Keeps only the last `littleSize` bytes of each stream. Behind settle() only.
    void keepLittle();
    static constexpr qint64 littleSize = 16 * 1024;

private:
    void read();
    /// Reads what is there; false at the end of the stream.
    bool readStream(int descriptor, OutputTail& tail);

    void join();

    int m_descriptors[2];
    int m_wake;
    mutable std::mutex m_mutex;
    OutputTail m_tails[2];
    bool m_hasEnded = false;
    std::thread m_thread;
};

}  // namespace Tamrix
