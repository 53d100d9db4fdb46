#pragma once

#include <QPainter>
#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/apitest.h"
#include "platform/objectmodel/valueobject.h"
#include "platform/testresult/testvp.h"
#include "support/files.h"
#include "support/recordingreport.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix::Test {

/// A picture of its own, whose pixels all differ.
inline QImage pattern(int size, int seed = 0) {
    QImage image(size, size, QImage::Format_RGB32);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x)
            image.setPixel(x, y, qRgb(x * 20 + seed, y * 20, (x * y + seed) % 256));
    }
    return image;
}

/// The picture with one pixel that differs.
inline QImage blemished(QImage image, QRgb pixel) {
    image.setPixel(4, 4, pixel);
    return image;
}

/// Searches for images of a suite on a desktop that is what a test says: two pixels of a screenshot
/// are one of the desktop, whose first one is at (-5, 0).
class ImageSearchTest : public ApiTest {
protected:
    ImageSearchTest() {
        TestSettingsType::s_waitForObjectTimeout = 500;
        runner.casePath = folder.filePath("suite/tst/test.fake");
        runner.result = &result;
        runner.currentContext = {new ApplicationContext};
        model.onNativeRequest = [this](const QString& name,
                                       const QVariantList&) -> Outcome<QVariant> {
            EXPECT_EQ(name, "desktopScreenshot");
            ++grabs;
            if (onGrab)
                onGrab();
            return Screenshot(desktop, QTransform(0.5, 0, 0, 0.5, -5, 0)).toVariant();
        };
        TestVP::setScreenshotServices({[this](RunnerInterface*) { return desktop; },
                                       [this](RunnerInterface*) { return pictures; },
                                       {}});
        storeImage("dot.png", pattern(10));
        desktop.fill(Qt::gray);
    }
    ~ImageSearchTest() override {
        TestVP::setScreenshotServices({});
        TestSettingsType::reset();
    }

    void storeImage(const QString& name, const QImage& image) const {
        const QString path = folder.filePath("suite/tst/searchImages/" + name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        EXPECT_TRUE(image.save(path, "PNG"));
    }

    void draw(QPoint place, const QImage& image = pattern(10)) {
        QPainter(&desktop).drawImage(place, image);
    }

    /// "ERROR", "true", or a rectangle as LEFTxTOPxWIDTHxHEIGHT.
    QString search(bool (*function)(ScriptContext*), const ScriptArgument::List& arguments) {
        const bool succeeded = context.call(function, arguments);
        EXPECT_EQ(succeeded, !context.hasError());
        if (context.hasError())
            return context.errorMessage();
        const QRect place = unwrapRemoteScreenRectangleAsQRect(resultObject());
        return QStringLiteral("%1x%2x%3x%4")
            .arg(place.x())
            .arg(place.y())
            .arg(place.width())
            .arg(place.height());
    }

    /// The results and the attached pictures since the last call: "TYPE MESSAGE: DETAIL", with
    /// what stands behind the detail in brackets, and "picture TITLE WIDTHxHEIGHT".
    QStringList taken() {
        QStringList texts;
        for (const ReportEntry& entry : report.entries) {
            if (const auto* const added = eventOf<ResultAdded>(entry)) {
                QString message = added->message;
                message.remove(pictures + "/");
                texts += QStringLiteral("%1 %2: %3").arg(added->type).arg(message, added->detail);
                for (const QString& text : {added->comment, added->explanation}) {
                    if (!text.isEmpty())
                        texts += text.split('\n');
                }
            } else if (const auto* const file = eventOf<FileAttached>(entry)) {
                EXPECT_TRUE(file->belongsToResult);
                const QImage image(file->path);
                texts += QStringLiteral("picture %1 %2x%3")
                             .arg(file->message)
                             .arg(image.width())
                             .arg(image.height());
            }
        }
        report.entries.clear();
        return texts;
    }

    QTemporaryDir folder;
    QString pictures = folder.filePath("attachments");
    QImage desktop{120, 80, QImage::Format_RGB32};
    /// Called before each grab; grabs counts them, from 1 on.
    std::function<void()> onGrab;
    int grabs = 0;
    RecordingReport report;
    TestResult result{&report};
};

}  // namespace Tamrix::Test
