// A screenshot of an X display of 1920x1080, from the server to what a script gets, beside the copies
// of its pixels that it is to cost. Starts an Xvfb of its own.

#include <unistd.h>

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

#include "platform/objectmodel/display/displaymodel.h"
#include "platform/objectmodel/display/screengrab.h"
#include "vision/screenshot/screenshot.h"

namespace {

using namespace Tamrix;

constexpr int rounds = 101;
constexpr QSize screenSize(1920, 1080);

double medianMilliseconds(const std::function<void()>& work) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}

/// What the server itself needs to put its screen into shared memory.
double grabMilliseconds(Display::XConnection& connection) {
    const auto whole = connection.rootGeometry();
    Display::ScreenGrab grab(std::shared_ptr<Display::XConnection>(&connection, [](auto*) {}));
    return medianMilliseconds([&] {
        if (!grab.fill(whole))
            std::fprintf(stderr, "no picture came\n");
    });
}

int measure(const QString& display) {
    const auto connection = Display::XConnection::open({display, {}});
    if (!connection) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(connection.error().text));
        return 1;
    }
    ApplicationFacts facts;
    facts.pid = ::getpid();
    DisplayModel model(
        *connection, [](qint64) { return true; }, facts);
    QImage image;
    const double whole = medianMilliseconds([&] {
        const Outcome<QVariant> picture =
            model.nativeRequest(QStringLiteral("desktopScreenshot"), {});
        image = picture ? Screenshot::fromVariant(*picture).image() : QImage();
    });
    if (image.size() != screenSize) {
        std::fprintf(stderr, "no picture of the screen came\n");
        return 1;
    }
    const double grab = grabMilliseconds(**connection);
    std::vector<uchar> copy(static_cast<size_t>(image.sizeInBytes()));
    const double copied = medianMilliseconds(
        [&] { std::memcpy(copy.data(), image.constBits(), copy.size()); });
    std::printf("screenshot of an X display, 1920x1080: %.2f ms\n", whole);
    std::printf("  the server's part (grab):            %.2f ms\n", grab);
    std::printf("  one copy of the pixels in memory:    %.2f ms\n", copied);
    std::printf("  beside the grab:                     %.2f copies (aim: at most 2)\n",
                (whole - grab) / copied);
    return 0;
}

}  // namespace

int main() {
    QProcess server;
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1"),
                                          QStringLiteral("-screen"), QStringLiteral("0"),
                                          QStringLiteral("1920x1080x24"), QStringLiteral("-nolisten"),
                                          QStringLiteral("tcp")});
    QByteArray line;
    while (!line.endsWith('\n') && server.waitForReadyRead(20000))
        line += server.readAllStandardOutput();
    const int code = measure(QStringLiteral(":") + QString::fromLatin1(line.trimmed()));
    server.terminate();
    server.waitForFinished();
    return code;
}
