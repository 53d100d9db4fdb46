// The image search by correlation beside OpenCV's matchTemplate, where that is installed.

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QThreadPool>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "desktoppicture.h"
#include "vision/search/basicimagelookup.h"
#include "vision/search/imagelookup.h"
#ifdef TAMRIX_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

using namespace Tamrix::Vision;  // NOLINT: a program of its own

namespace {

// Fresh pages cost as much as the arithmetic: the peer is measured with an allocator that keeps
// them.
constexpr std::pair<const char*, const char*> allocatorSettings[] = {
    {"MALLOC_MMAP_MAX_", "0"},
    {"MALLOC_TRIM_THRESHOLD_", "2000000000"},
    {"MALLOC_TOP_PAD_", "536870912"}};

bool hasAllocatorSettings() {
    return std::getenv(allocatorSettings[0].first) != nullptr;
}

// The C library reads these at its start.
void startAgainWithAllocator(char** arguments) {
    for (const auto& [name, value] : allocatorSettings)
        setenv(name, value, 1);
    execv("/proc/self/exe", arguments);
}

// Lets this thread and those that it starts run on so many processors.
void useProcessors(int count) {
    QThreadPool::globalInstance()->waitForDone();
    QThreadPool::globalInstance()->setMaxThreadCount(count);
    cpu_set_t all;
    CPU_ZERO(&all);
    for (int i = 0; i < count; ++i)
        CPU_SET(i, &all);
    sched_setaffinity(0, sizeof all, &all);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? NAN : values[values.size() / 2];
}

struct Search {
    QImage haystack;
    QImage needle;
    ImageLookupOptions options;
    int limit = 1000;
    bool isBest = false;
    BestOccurrenceFlags flags = {};

    int run() const {
        const std::unique_ptr<ImageLookupImplementation> engine(ImageLookupImplementation::get());
        const std::unique_ptr<ImageLookupImplementation::Cache> cache(
            engine->newCache({needle}, true));
        const SearchRegion region(haystack.rect());
        if (isBest)
            return engine->bestOccurrences(haystack, region, cache.get(), {}, options, limit, flags)
                .second.size();
        return engine->allOccurrences(haystack, region, cache.get(), options, limit).size();
    }
};

// The peer does the same work: a map of scores for each size, and a look at its best place.
class Peer {
public:
    explicit Peer(const Search& search) {
#ifdef TAMRIX_HAVE_OPENCV
        m_haystack = matrix(search.haystack);
        Tamrix::Vision::BasicImageLookup::Needle needle(search.needle);
        QList<Tamrix::Vision::BasicImageLookup::Resize*> sizes = {&needle};
        const bool isMultiscale = search.isBest
                                      ? !search.options.hasField(ImageLookupOptions::Multiscale)
                                      : search.options.getMultiscale();
        if (isMultiscale)
            sizes = needle.getResizes(search.options.getMinScaleFactor() / 100,
                                      search.options.getMaxScaleFactor() / 100);
        for (const auto* const size : sizes) {
            m_needles.push_back(matrix(size->image));
            m_masks.push_back(size->hasHoles ? mask(size->image) : cv::Mat());
        }
        cv::setNumThreads(1);
#else
        Q_UNUSED(search);
#endif
    }

    bool isThere() const {
#ifdef TAMRIX_HAVE_OPENCV
        return true;
#else
        return false;
#endif
    }

    std::size_t sizes() const {
#ifdef TAMRIX_HAVE_OPENCV
        return m_needles.size();
#else
        return 1;
#endif
    }

    void run() {
#ifdef TAMRIX_HAVE_OPENCV
        for (std::size_t i = 0; i < m_needles.size(); ++i) {
            cv::Mat scores;
            cv::matchTemplate(m_haystack, m_needles[i], scores, cv::TM_CCORR_NORMED, m_masks[i]);
            double highest = 0;
            cv::minMaxLoc(scores, nullptr, &highest);
        }
#endif
    }

private:
#ifdef TAMRIX_HAVE_OPENCV
    static cv::Mat matrix(const QImage& image) {
        cv::Mat made(image.height(), image.width(), CV_8UC3);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                made.at<cv::Vec3b>(y, x) =
                    cv::Vec3b(static_cast<uchar>(qBlue(pixel)), static_cast<uchar>(qGreen(pixel)),
                              static_cast<uchar>(qRed(pixel)));
            }
        }
        return made;
    }

    static cv::Mat mask(const QImage& image) {
        cv::Mat made(image.height(), image.width(), CV_8UC3);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                made.at<cv::Vec3b>(y, x) =
                    cv::Vec3b::all(qAlpha(image.pixel(x, y)) > 127 ? 255 : 0);
        }
        return made;
    }

    cv::Mat m_haystack;
    std::vector<cv::Mat> m_needles;
    std::vector<cv::Mat> m_masks;
#endif
};

// How much is to be seen in a part of the picture.
int detail(const QImage& image, const QRect& rect) {
    int sum = 0;
    for (int y = rect.top(); y <= rect.bottom(); y += 2) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = rect.left(); x < rect.right(); x += 2)
            sum += std::abs(qGreen(line[x]) - qGreen(line[x + 1]));
    }
    return sum;
}

// The part of the picture with this rank of detail, 0 for the plainest and 1 for the busiest, a few
// of its pixels changed.
QImage needleOf(const QImage& picture, QSize size, double rank) {
    std::vector<std::pair<int, QRect>> parts;
    for (int y = 7; y + size.height() < picture.height(); y += 61) {
        for (int x = 5; x + size.width() < picture.width(); x += 67) {
            const QRect rect(QPoint(x, y), size);
            if (const int amount = detail(picture, rect); amount > 0)
                parts.emplace_back(amount, rect);
        }
    }
    std::sort(parts.begin(), parts.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    const auto place = static_cast<std::size_t>(rank * static_cast<double>(parts.size() - 1));
    QImage needle = picture.copy(parts[place].second).convertToFormat(QImage::Format_ARGB32);
    for (int i = 0; i < 6; ++i) {
        const QPoint at((i * 11 + 5) % size.width(), (i * 7 + 3) % size.height());
        needle.setPixel(at, needle.pixel(at) ^ 0x283020U);
    }
    return needle;
}

QImage withHole(QImage needle) {
    const QSize size = needle.size();
    for (int y = size.height() / 4; y < size.height() * 3 / 4; ++y) {
        for (int x = size.width() / 4; x < size.width() * 3 / 4; ++x)
            needle.setPixel(x, y, 0);
    }
    return needle;
}

struct Work {
    std::string name;
    Search search;
    double goal;
    int rounds;
};

double timeOf(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void compare(const Work& work, int processors) {
    Peer peer(work.search);
    std::vector<double> ours, ourThreads, theirs;
    int found = 0;
    work.search.run();
    for (int round = 0; round < work.rounds; ++round) {
        useProcessors(1);
        theirs.push_back(timeOf([&] { peer.run(); }));
        // A fast search takes several turns, so that one interruption does not count.
        for (int turn = 0; turn < 3; ++turn)
            ours.push_back(timeOf([&] { found = work.search.run(); }));
        if (processors < 2)
            continue;
        useProcessors(2);
        for (int turn = 0; turn < 3; ++turn)
            ourThreads.push_back(timeOf([&] { work.search.run(); }));
    }
    const double mine = median(ours);
    const double other = peer.isThere() ? median(theirs) : NAN;
    std::printf("| %s | %zu | %d | %.1f | %.2f | %.2f | %.3f | %.2f |\n", work.name.c_str(),
                peer.sizes(), found, other, mine, median(ourThreads), mine / other, work.goal);
    std::fflush(stdout);
}

long statusValue(const char* key) {
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray all = file.readAll();
    const int at = all.indexOf(key);
    return at < 0 ? 0 : std::atol(all.constData() + at + qstrlen(key));
}

// The most memory that a search takes beside the haystack, in haystacks; in a process of its own.
void printMemory(const Work& work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const long before = statusValue("VmRSS:");
        work.search.run();
        const double most = static_cast<double>(statusValue("VmHWM:") - before) * 1024;
        std::printf("| %s | %.1f |\n", work.name.c_str(),
                    most / static_cast<double>(work.search.haystack.sizeInBytes()));
        std::fflush(stdout);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
}

ImageLookupOptions options(const char* description) {
    return ImageLookupOptions::fromDescription(description);
}

std::vector<Work> worksFor(const QImage& picture, const std::string& name, bool isLarge) {
    std::vector<Work> works;
    constexpr double usual = 0.7;
    for (const QSize size : {QSize(32, 32), QSize(64, 64), QSize(200, 100)}) {
        const std::string what =
            name + " " + std::to_string(size.width()) + "x" + std::to_string(size.height());
        const QImage needle = needleOf(picture, size, usual);
        works.push_back(
            {what, {picture, needle, options("tolerant: true")}, 0.08, isLarge ? 3 : 7});
        if (isLarge)
            continue;
        if (size.width() > 32)
            works.push_back(
                {what + " hole", {picture, withHole(needle), options("tolerant: true")}, 0.05, 5});
        works.push_back({what + " many hits",
                         {picture, needleOf(picture, size, 0.02),
                          options("tolerant: true, threshold: 95"), 10000000},
                         0.3,
                         5});
        if (size.width() != 64)
            continue;
        // Nothing like it is in the picture, so there is nothing to prune by.
        QImage foreign = needle;
        for (int y = 0; y < foreign.height(); ++y) {
            for (int x = 0; x < foreign.width(); ++x)
                foreign.setPixel(x, y, foreign.pixel(x, y) ^ ((x ^ y) & 8 ? 0x7f0000U : 0x00007fU));
        }
        works.push_back({what + " all scores",
                         {picture, foreign, options("multiscale: false"), 10, true, AcceptAnyScore},
                         0.2,
                         5});
    }
    if (isLarge)
        return works;
    for (const QSize size : {QSize(64, 64), QSize(200, 100)}) {
        const std::string what =
            name + " " + std::to_string(size.width()) + "x" + std::to_string(size.height());
        const QImage needle = needleOf(picture, size, usual);
        const int rounds = size.width() > 64 ? 1 : 3;
        works.push_back({what + " all scales",
                         {picture, needle, options("tolerant: true, multiscale: true")},
                         0.05,
                         rounds});
        works.push_back({what + " best of all scales",
                         {picture, needle, options("tolerant: true"), 10, true, {}},
                         0.08,
                         rounds});
    }
    return works;
}

}  // namespace

// imagesearch_bench [REGEX]: those lines whose name matches.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const std::regex wanted(argc > 1 ? argv[1] : ".");
    const QImage picture = drawDesktopPicture(QSize(1920, 1080));
    const QImage large = drawDesktopPicture(QSize(3840, 2160));
    std::vector<Work> works = worksFor(picture, "1920x1080", false);
    const std::vector<Work> more = worksFor(large, "3840x2160", true);
    works.insert(works.end(), more.begin(), more.end());
    const int processors = std::min(2, QThread::idealThreadCount());

    // Memory as users have it, times with an allocator that keeps its pages.
    if (!hasAllocatorSettings()) {
        std::printf(
            "Memory beside the haystack, in haystacks (goal: below 6)\n| work | memory |\n");
        for (const Work& work : works) {
            if (std::regex_search(work.name, wanted))
                printMemory(work);
        }
        std::fflush(stdout);
        startAgainWithAllocator(argv);
    }
    std::printf(
        "\nMilliseconds, medians\n| work | sizes | found | OpenCV | ours | ours on 2 processors | "
        "ours / OpenCV | goal |\n|---|---|---|---|---|---|---|---|\n");
    for (const Work& work : works) {
        if (std::regex_search(work.name, wanted))
            compare(work, processors);
    }
    return 0;
}
