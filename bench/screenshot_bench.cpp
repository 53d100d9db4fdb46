// A screenshot of an X display of 1920x1080, from the server to what a script gets, beside the
// copies of its pixels that it is to cost. Starts an Xvfb of its own.

#include <unistd.h>

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/objectmodel/display/displaymodel.h"
#include "platform/objectmodel/display/screengrab.h"
#include "vision/screenshot/screenshot.h"

namespace {

using namespace Tamrix;

constexpr int rounds = 301;
constexpr QSize screenSize(1920, 1080);

/// The times of something that is done again and again.
class Times {
public:
    template <typename Work>
    void add(Work work) {
        QElapsedTimer timer;
        timer.start();
        work();
        m_times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    /// The least, in milliseconds: what more it took was other programs' doing.
    double least() const { return *std::min_element(m_times.begin(), m_times.end()); }

private:
    std::vector<double> m_times;
};

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
    Display::ScreenGrab grab(*connection);
    std::vector<uchar> copy(static_cast<size_t>(screenSize.width() * screenSize.height() * 4));
    QImage image;
    Times whole;
    Times grabbing;
    Times copying;
    // In turns, since other programs may be busy for a while.
    for (int round = 0; round < rounds; ++round) {
        whole.add([&] {
            const Outcome<QVariant> picture =
                model.nativeRequest(QStringLiteral("desktopScreenshot"), {});
            image = picture ? Screenshot::fromVariant(*picture).image() : QImage();
        });
        if (image.size() != screenSize || !grab.fill(QRect(QPoint(0, 0), screenSize))) {
            std::fprintf(stderr, "no picture of the screen came\n");
            return 1;
        }
        grabbing.add([&] { static_cast<void>(grab.fill(QRect(QPoint(0, 0), screenSize))); });
        copying.add([&] { std::memcpy(copy.data(), image.constBits(), copy.size()); });
    }
    std::printf("screenshot of an X display, 1920x1080: %.2f ms\n", whole.least());
    std::printf("  the server's part (grab):            %.2f ms\n", grabbing.least());
    std::printf("  one copy of the pixels in memory:    %.2f ms\n", copying.least());
    std::printf("  beside the grab:                     %.2f copies (aim: at most 2)\n",
                (whole.least() - grabbing.least()) / copying.least());
    return 0;
}

}  // namespace

int main() {
    QProcess server;
    server.setStandardErrorFile(QProcess::nullDevice());
    server.start(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                  QStringLiteral("0"), QStringLiteral("1920x1080x24"), QStringLiteral("-nolisten"),
                  QStringLiteral("tcp")});
    QByteArray line;
    while (!line.endsWith('\n') && server.waitForReadyRead(20000))
        line += server.readAllStandardOutput();
    const int code = measure(QStringLiteral(":") + QString::fromLatin1(line.trimmed()));
    server.terminate();
    server.waitForFinished();
    return code;
}
