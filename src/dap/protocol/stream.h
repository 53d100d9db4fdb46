#pragma once

#include <QByteArray>

namespace Tamrix::Dap {

/// Where bytes come from, without waiting for them.
class Reader {
public:
    enum class State {
        Open,  ///< more may come
        Ended  ///< no more will come
    };

    virtual ~Reader() = default;
    /// Appends what has come since the last call, which may be nothing.
    virtual State read(QByteArray* bytes) = 0;
    /// What poll() watches for more; -1 when there is nothing to watch.
    virtual int descriptor() const { return -1; }
};

/// Where bytes go.
class Writer {
public:
    virtual ~Writer() = default;
    /// Hands over all bytes, waiting as long as that takes. False when nobody takes them any more.
    virtual bool write(const QByteArray& bytes) = 0;
};

/// A pipe, socket or file. Does not own the descriptor.
class DescriptorReader : public Reader {
public:
    explicit DescriptorReader(int descriptor) : m_descriptor(descriptor) {}
    State read(QByteArray* bytes) override;
    int descriptor() const override { return m_descriptor; }

private:
    int m_descriptor;
};

/// A pipe, socket or file. Does not own the descriptor.
class DescriptorWriter : public Writer {
public:
    explicit DescriptorWriter(int descriptor) : m_descriptor(descriptor) {}
    bool write(const QByteArray& bytes) override;

private:
    int m_descriptor;
};

}  // namespace Tamrix::Dap
