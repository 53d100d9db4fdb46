// How well and how fast text on screens is read: with our default options, with those that
// docs/ocr.md advises, and by the program "tesseract" as it is. A word counts when it is read
// exactly and lies in the widget that it is written in.

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>
#include <exception>
#include <functional>
#include <optional>

#include "base/environment.h"
#include "dialogpictures.h"
#include "shared/ocr/implementation.h"

namespace Tamrix::Bench {
namespace {

using OCR::Options;
using OCR::Word;
using Vision::SearchRegion;

using Reader = std::function<QList<Word>(const QImage&)>;

Options advisedOptions() {
    Options options = Options::defaults();
    options.tesseract.psm = OCR::TesseractOptions::SparseText;
    return options;
}

QList<Word> readWith(const Options& options, const QImage& image) {
    return OCR::Implementation::get(QStringLiteral("Tesseract"))
        ->processImage(image, {}, options, SearchRegion(image.rect()), nullptr)
        ->getAllWords();
}

/// Runs the program on a file and returns the words of its table.
QList<Word> readByProgram(const QString& file, const QStringList& arguments = {}) {
    QProcess process;
    process.start("tesseract", QStringList{file, "stdout"} + arguments + QStringList{"tsv"});
    process.waitForFinished(-1);
    QList<Word> words;
    const QStringList rows = QString::fromUtf8(process.readAllStandardOutput()).split('\n');
    for (const QString& row : rows) {
        const QStringList cells = row.split('\t');
        if (cells.size() < 12 || cells.at(0) != "5")
            continue;
        words.append({cells.at(11).trimmed(),
                      QRect(cells.at(6).toInt(), cells.at(7).toInt(), cells.at(8).toInt(),
                            cells.at(9).toInt()),
                      0});
    }
    return words;
}

/// How many of the picture's words were read, each in its place.
int countFound(const DialogPicture& picture, QList<Word> words) {
    int found = 0;
    for (const DialogPicture::Text& text : picture.texts) {
        const QRect place = text.place.adjusted(-3, -3, 3, 3);
        for (const QString& wanted : text.words) {
            for (int i = 0; i < words.size(); ++i) {
                if (words.at(i).text == wanted && place.contains(words.at(i).rect)) {
                    words.removeAt(i);
                    ++found;
                    break;
                }
            }
        }
    }
    return found;
}

double secondsOf(const std::function<void()>& work) {
    std::optional<double> best;
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        work();
        const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        best = std::min(best.value_or(seconds), seconds);
    }
    return *best;
}

void measureAccuracy(const QString& folder, const char* keep) {
    struct Tally {
        const char* name;
        std::function<QList<Word>(const QImage&, const QString&)> read;
        int light = 0;
        int all = 0;
    };
    Tally tallies[] = {
        {"default options",
         [](const QImage& image, const QString&) { return readWith(Options::defaults(), image); }},
        {"advised options",
         [](const QImage& image, const QString&) { return readWith(advisedOptions(), image); }},
        {"program tesseract",
         [](const QImage&, const QString& file) { return readByProgram(file); }},
    };
    int lightWords = 0;
    int allWords = 0;
    std::printf("%-28s %6s %10s %10s %10s\n", "dialog", "words", "default", "advised", "program");
    int number = 0;
    for (const DialogPicture& picture : dialogPictures()) {
        const QString file =
            QStringLiteral("%1/%2.png")
                .arg(keep ? QString::fromLocal8Bit(keep) : folder, QString::number(number++));
        picture.image.save(file);
        const int words = picture.wordCount();
        const bool isLarge = !picture.isDark && picture.pointSize >= 11;
        allWords += words;
        lightWords += isLarge ? words : 0;
        std::printf("%-28s %6d", qPrintable(picture.name), words);
        for (Tally& tally : tallies) {
            const int found = countFound(picture, tally.read(picture.image, file));
            tally.all += found;
            tally.light += isLarge ? found : 0;
            std::printf(" %10d", found);
            std::fflush(stdout);
        }
        std::printf("\n");
    }
    for (const Tally& tally : tallies)
        std::printf("%-20s light, 11 points and more: %5.1f %%   all: %5.1f %%\n", tally.name,
                    100.0 * tally.light / lightWords, 100.0 * tally.all / allWords);
}

void measureSpeed(const QString& folder) {
    const QImage screen = screenPicture();
    // What our preprocessing makes of it comes near to this: a screen that is magnified.
    const QString file = folder + "/screen.png";
    const QSize size = screen.size() * OCR::defaultScaleFactor;
    screen.convertToFormat(QImage::Format_Grayscale8)
        .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .save(file);
    const double whole = secondsOf([&] { readWith(Options::defaults(), screen); });
    const QRect tenth(0, 0, 1920, 108);
    const double part = secondsOf([&] {
        OCR::Implementation::get(QStringLiteral("Tesseract"))
            ->processImage(screen, {}, Options::defaults(), SearchRegion(tenth), nullptr);
    });
    const double program = secondsOf([&] { readByProgram(file, {"--psm", "6"}); });
    std::printf(
        "1920x1080: processImage %.2f s, program on the same magnified picture %.2f s "
        "(%.2f times); a tenth of the screen %.2f s (%.2f of the whole)\n",
        whole, program, whole / program, part, part / whole);
}

}  // namespace
}  // namespace Tamrix::Bench

/// With a folder as argument the pictures are kept there.
int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX);
    try {
        const QTemporaryDir folder;
        Tamrix::Bench::measureAccuracy(folder.path(), argc > 1 ? argv[1] : nullptr);
        Tamrix::Bench::measureSpeed(folder.path());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
