#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "runner/coreapplication.h"
#include "runner/remote/localsystem.h"
#include "runner/remote/sshsystem.h"
#include "support/outcomes.h"
#include "support/printqt.h"
#include "support/sshserver.h"

namespace Tamrix::Test {

enum class SystemKind { Local, Ssh };

/// The same tests for this machine and for one that is reached by SSH, which is this one, too.
class SystemTest : public testing::TestWithParam<SystemKind> {
protected:
    SystemTest() {
        coreApplication();
        if (GetParam() == SystemKind::Local) {
            system = std::make_unique<LocalSystem>();
            return;
        }
        server.emplace();
        Outcome<std::unique_ptr<SshSystem>> connected =
            SshSystem::connect({QStringLiteral("127.0.0.1"), server->port()});
        EXPECT_EQ(errorOf(connected), "") << qPrintable(server->log());
        if (connected)
            system = std::move(*connected);
    }

    void SetUp() override { ASSERT_TRUE(system); }

    QString path(const QString& name) const { return folder.filePath(name); }
    /// What stands in the folder of the test, hidden things too, in order.
    QStringList names() const {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder;
    std::optional<SshServer> server;
    std::unique_ptr<System> system;
};

inline std::string systemName(const testing::TestParamInfo<SystemKind>& kind) {
    return kind.param == SystemKind::Local ? "Local" : "Ssh";
}

}  // namespace Tamrix::Test

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): a macro of GoogleTest is behind it
#define TAMRIX_FOR_ALL_SYSTEMS(suite)                                                         \
    INSTANTIATE_TEST_SUITE_P(All, suite, testing::Values(SystemKind::Local, SystemKind::Ssh), \
                             systemName)
