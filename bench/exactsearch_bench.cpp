// The exact image search beside one reading of the haystack and beside the plain scan.

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "desktoppicture.h"
#include "vision/search/basicimagelookup.h"

using Tamrix::Vision::SearchMethod;
using Tamrix::Vision::SearchRegion;
using Tamrix::Vision::BasicImageLookup::Needle;

namespace {

/// A contender: its times, in milliseconds.
struct Contender {
    std::function<void()> run;
    std::vector<double> times;

    double median() {
        std::sort(times.begin(), times.end());
        return times.at(times.size() / 2);
    }
};

/// Lets the contenders take turns.
void measure(std::vector<Contender>& contenders, int rounds) {
    using Clock = std::chrono::steady_clock;
    for (int round = 0; round < rounds; ++round) {
        for (Contender& contender : contenders) {
            const Clock::time_point start = Clock::now();
            contender.run();
            contender.times.push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        }
    }
}

/// Reads each word of the image once. Vectors of the processor's size read as fast as it can.
template <typename Vector>
[[gnu::always_inline]] inline quint64 readWith(const QImage& image) {
    constexpr int group = 4;
    Vector sums[group] = {};
    for (int y = 0; y < image.height(); ++y) {
        const uchar* row = image.constScanLine(y);
        constexpr int step = group * sizeof(Vector);
        for (int i = 0; i + step <= image.bytesPerLine(); i += step) {
            for (int k = 0; k < group; ++k) {
                Vector words;
                std::memcpy(&words, row + i + k * sizeof(Vector), sizeof(Vector));
                sums[k] ^= words;
            }
        }
    }
    const Vector sum = (sums[0] ^ sums[1]) ^ (sums[2] ^ sums[3]);
    return static_cast<quint64>(sum[0] ^ sum[1]);
}

quint64 readPlainly(const QImage& image) {
    using Vector [[gnu::vector_size(16)]] = qint64;
    return readWith<Vector>(image);
}

#ifdef __x86_64__
[[gnu::target("avx2")]] quint64 readByAvx2(const QImage& image) {
    using Vector [[gnu::vector_size(32)]] = qint64;
    return readWith<Vector>(image);
}
#endif

quint64 readOnce(const QImage& image) {
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2"))
        return readByAvx2(image);
#endif
    return readPlainly(image);
}

struct Work {
    const char* name;
    QImage haystack;
    QImage needle;
    int limit = std::numeric_limits<int>::max();
};

QImage plain(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(239, 239, 239));
    return image;
}

QImage withOtherPixel(QImage image, QPoint where) {
    image.setPixelColor(where, Qt::black);
    return image;
}

/// Whether the plain scan is quick enough to be waited for.
bool isPlainBearable(const QImage& needle) {
    return needle.width() * needle.height() <= 64 * 64;
}

void compare(const Work& work) {
    volatile quint64 sink = 0;
    Needle needle(work.needle);
    const SearchRegion region(work.haystack.rect());
    int found = 0;
    const auto search = [&](SearchMethod method) {
        Tamrix::Vision::setSearchMethod(method);
        found = strictAllOccurrences(work.haystack, region, needle, work.limit).size();
    };
    std::vector<Contender> contenders(2);
    contenders[0].run = [&] { sink = sink + readOnce(work.haystack); };
    contenders[1].run = [&] { search(SearchMethod::Fast); };
    measure(contenders, 15);
    const int fastFound = found;
    std::vector<Contender> plainScan(1);
    plainScan[0].run = [&] { search(SearchMethod::Plain); };
    if (isPlainBearable(work.needle)) {
        measure(plainScan, 3);
        if (found != fastFound) {
            std::fprintf(stderr, "%s: %d occurrences instead of %d\n", work.name, fastFound, found);
            std::exit(1);
        }
    }
    const double reading = contenders[0].median();
    const double fast = contenders[1].median();
    std::printf("| %s | %d | %.2f | %.2f | %.1f | ", work.name, fastFound, reading, fast,
                fast / reading);
    if (plainScan[0].times.empty())
        std::printf("- |\n");
    else
        std::printf("%.1f |\n", plainScan[0].median());
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QImage desktop = drawDesktopPicture({1920, 1080});
    const QImage large = drawDesktopPicture({3840, 2160});
    const QImage empty = plain({1920, 1080});
    const Work works[] = {
        {"32x32, 1920x1080", desktop, desktop.copy(1310, 700, 32, 32)},
        {"64x64, 1920x1080", desktop, desktop.copy(1330, 690, 64, 64)},
        {"200x100, 1920x1080", desktop, desktop.copy(1100, 640, 200, 100)},
        {"32x32, 3840x2160", large, large.copy(3110, 1900, 32, 32)},
        {"64x64, 3840x2160", large, large.copy(3110, 1900, 64, 64)},
        {"200x100, 3840x2160", large, large.copy(2900, 1700, 200, 100)},
        {"64x64 not there, 1920x1080", desktop,
         withOtherPixel(desktop.copy(1330, 690, 64, 64), {40, 50})},
        {"plain 16x16 on the desktop", desktop, plain({16, 16})},
        {"plain 64x64, plain 1920x1080", empty, plain({64, 64})},
        {"the same, limit 10", empty, plain({64, 64}), 10},
        {"plain 400x300, limit 10, plain 1920x1080", empty, plain({400, 300}), 10},
        {"plain 400x300, plain 1920x1080", empty, plain({400, 300})},
        {"plain 64x64, another pixel in each 60x60",
         [&] {
             QImage image = empty;
             for (int y = 30; y < image.height(); y += 60) {
                 for (int x = 30; x < image.width(); x += 60)
                     image.setPixelColor(x, y, Qt::black);
             }
             return image;
         }(),
         plain({64, 64})},
        {"plain 64x64 but its last pixel, plain 1920x1080", empty,
         withOtherPixel(plain({64, 64}), {63, 63})},
        {"stripes 64x64, stripes 1920x1080",
         [&] {
             QImage image = empty;
             for (int y = 0; y < image.height(); y += 2)
                 std::memset(image.scanLine(y), 0xff, image.bytesPerLine());
             return image;
         }(),
         [&] {
             QImage image = plain({64, 64});
             for (int y = 0; y < image.height(); y += 2)
                 std::memset(image.scanLine(y), 0xff, image.bytesPerLine());
             return image;
         }()},
    };
    std::printf(
        "| needle, haystack | found | reading once, ms | search, ms | ratio | plain, ms |\n"
        "|---|---|---|---|---|---|\n");
    for (const Work& work : works)
        compare(work);
    return 0;
}
