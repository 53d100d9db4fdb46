#pragma once

#include <memory>

#include "runner/remote/sftpclient.h"
#include "runner/remote/sshconnection.h"
#include "runner/remote/system.h"

namespace Tamrix {

/// Another machine, by SSH: commands by "exec", files by SFTP.
class SshSystem : public System {
public:
    static Outcome<std::unique_ptr<SshSystem>> connect(const SshTarget& target,
                                                       const SshPatience& patience = {});

    Outcome<CommandResult> execute(const SystemCommand& command) override;
    Outcome<PathFacts> facts(const QString& path) override;
    Outcome<QString> linkTarget(const QString& path) override;
    Outcome<QStringList> entries(const QString& path) override;
    Outcome<> rename(const QString& from, const QString& to) override;
    Outcome<> makeDirectory(const QString& path) override;
    Outcome<> removeFile(const QString& path) override;
    Outcome<> removeDirectory(const QString& path) override;
    Outcome<> writeFile(const QString& path, const QByteArray& bytes) override;
    Outcome<> upload(const QString& localPath, const QString& path) override;
    Outcome<> download(const QString& path, const QString& localPath) override;

private:
    explicit SshSystem(std::unique_ptr<SshConnection> connection);
    /// Of a path that can be one; started at the first call.
    Outcome<SftpClient*> sftp(const QString& path);
    /// Writes a file by `write` under another name, which becomes that of `path` once it is whole.
    /// `facts` are the rights and times of the file, null for those of the file that is replaced.
    Outcome<> create(const QString& path, const PathFacts* facts,
                     const std::function<Outcome<>(SftpClient&, const SftpClient::Handle&)>& write);

    std::unique_ptr<SshConnection> m_connection;
    std::unique_ptr<SftpClient> m_sftp;
};

}  // namespace Tamrix
