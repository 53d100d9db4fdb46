#pragma once

#include "runner/remote/system.h"

namespace Tamrix {

/// This machine.
class LocalSystem : public System {
public:
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
    Outcome<> copyFile(const QString& from, const QString& to);
};

}  // namespace Tamrix
