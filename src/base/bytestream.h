#pragma once

#include <QByteArray>

#include "base/export.h"

namespace Tamrix {

/// Where bytes come from, without waiting for them.
class TAMRIX_EXPORT ByteReader {
public:
    enum class State {
        Open,  ///< more may come
        Ended  ///< no more will come
    };

    virtual ~ByteReader() = default;
    /// Appends what has come since the last call, which may be nothing.
    virtual State read(QByteArray* bytes) = 0;
    /// What poll() watches for more; -1 when there is nothing to watch.
    virtual int descriptor() const { return -1; }
};

/// Where bytes go.
class TAMRIX_EXPORT ByteWriter {
public:
    virtual ~ByteWriter() = default;
    /// Hands over all bytes, waiting as long as that takes. False when nobody takes them any more.
    virtual bool write(const QByteArray& bytes) = 0;
    /// Whether somebody takes them, as far as that can be told without writing.
    virtual bool isOpen() const { return true; }
};

/// A pipe, socket or file. Does not own the descriptor.
class TAMRIX_EXPORT DescriptorReader : public ByteReader {
public:
    explicit DescriptorReader(int descriptor) : m_descriptor(descriptor) {}
    State read(QByteArray* bytes) override;
    int descriptor() const override { return m_descriptor; }

private:
    int m_descriptor;
};

/// A pipe, socket or file. Does not own the descriptor.
class TAMRIX_EXPORT DescriptorWriter : public ByteWriter {
public:
    explicit DescriptorWriter(int descriptor) : m_descriptor(descriptor) {}
    bool write(const QByteArray& bytes) override;
    bool isOpen() const override;

private:
    int m_descriptor;
};

}  // namespace Tamrix
