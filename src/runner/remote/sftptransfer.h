#pragma once

#include "runner/remote/sftpclient.h"

namespace Tamrix {

// Files between this machine and a server. Many requests are on their way at a time, so that the
// way there and back does not count.

/// Writes what the descriptor holds, from its start to its end, to a file of the server. `path` is
/// what failures of the server tell, `localPath` those of this machine.
Outcome<> sendFile(SftpClient& client, const SftpClient::Handle& handle, int descriptor,
                   const QString& localPath, const QString& path);

/// The same with bytes.
Outcome<> sendBytes(SftpClient& client, const SftpClient::Handle& handle, const QByteArray& bytes,
                    const QString& path);

/// Writes what a file of the server holds, to its end, to the descriptor. `size` is what the server
/// told before; the file may be longer or shorter.
Outcome<> fetchFile(SftpClient& client, const SftpClient::Handle& handle, quint64 size,
                    int descriptor, const QString& path, const QString& localPath);

}  // namespace Tamrix
