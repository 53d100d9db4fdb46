#include "platform/verification/pointcreation.h"

#include <QTemporaryDir>

#include "platform/verification/check.h"
#include "platform/verification/pointtext.h"
#include "platform/verification/verificationpointfile.h"
#include "platform/verification/verificationtest.h"
#include "support/failuretext.h"
#include "support/files.h"
#include "support/golden.h"

namespace Tamrix {
namespace {

using Test::failureText;

class PointCreationTest : public Test::VerificationTest {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("new.vp");
};

TEST_F(PointCreationTest, WhatIsCreatedHolds) {
    model.snapshotBytes = snapshotOf("OK", Qt::green);
    const FindObject find = [this](const QString&) { return SharedPtr<Object>(field); };
    const std::pair<QString, Outcome<VerificationPoint>> points[] = {
        {"properties", propertiesPointOf(field, name, {})},
        {"named", propertiesPointOf(field, name, {"ratio", "geometry.x"})},
        {"table", tablePointOf(field, name, CellContent::TextsAndBackgrounds)},
        {"visual", visualPointOf(model.snapshotBytes, QString())},
    };
    QString texts;
    for (const auto& [kind, point] : points) {
        ASSERT_TRUE(point) << qPrintable(kind + ": " + failureText(point));
        const QString file = folder.filePath(kind);
        ASSERT_EQ(failureText(createVerificationPointFile(file, *point)), "") << qPrintable(kind);
        const Outcome<VerificationPoint> read = readVerificationPoint(file);
        ASSERT_TRUE(read) << qPrintable(kind + ": " + failureText(read));
        const Findings findings =
            std::visit([&](const auto& each) { return check(each, find); }, *read);
        EXPECT_EQ(findings.differences(), QStringList()) << qPrintable(kind);
        EXPECT_GT(findings.compared, 1) << qPrintable(kind);
        texts += verificationPointText(*read) + '\n';
    }
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("platform/verification/shown.txt", texts));
}

TEST_F(PointCreationTest, RefusesWhatItCanNotMake) {
    EXPECT_TRUE(failureText(propertiesPointOf(field, name, {"text", "none"}))
                    .startsWith("Object '" + name + "': 'none' can't be read: "));
    EXPECT_EQ(failureText(propertiesPointOf(other, ":Other", {})),
              "Object ':Other' has no property to expect");
    model.onNativeRequest = nullptr;
    EXPECT_NE(failureText(tablePointOf(field, name, CellContent::Texts)), "");

    EXPECT_EQ(createVisualVPFile(path, QByteArray()),
              "The application's answer with the elements of an object makes no sense");
    UIAbstraction::UIElement hidden("Window");
    hidden.setRealName(":Hidden");
    EXPECT_EQ(createVisualVPFile(path, UIAbstraction::UIElement::elementsToByteArray({&hidden})),
              "The object :Hidden is not visible");
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(PointCreationTest, OverwritesNoFile) {
    const QByteArray snapshot = snapshotOf("OK", Qt::green);
    ASSERT_TRUE(Tamrix::Test::writeFile(path + ".png", "mine"));
    EXPECT_EQ(createVisualVPFile(path, snapshot), "File '" + path + ".png' already exists");
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(Tamrix::Test::readFile(path + ".png"), "mine");
    QFile::remove(path + ".png");
    EXPECT_EQ(createVisualVPFile(path, snapshot), "");
    EXPECT_EQ(createVisualVPFile(path, snapshot), "File '" + path + "' already exists");
}

}  // namespace
}  // namespace Tamrix
