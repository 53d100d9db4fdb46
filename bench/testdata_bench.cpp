// Reads a large CSV file into records, against Python's csv module and against the rules of the
// format followed character by character.
//
//   testdata_bench [MEGABYTES [ROUNDS]]

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <vector>

#include "shared/testdata/testdataset.h"
#include "shared/tsvparser/literalreader.h"

namespace Tamrix {
namespace {

constexpr char pythonReader[] =
    "import csv, sys, time\n"
    "start = time.perf_counter()\n"
    "with open(sys.argv[1], newline='', encoding='utf-8') as file:\n"
    "    rows = list(csv.reader(file))\n"
    "print((time.perf_counter() - start) * 1000, len(rows))\n";

/// Rows of about 100 bytes with eight fields, three of them quoted. Returns the number of records.
int writeTable(const QString& path, qint64 size) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "%s can't be written\n", qPrintable(path));
        std::exit(1);
    }
    std::mt19937 random(7);
    QByteArray piece = "id,name,comment,street,amount,date,flag,note\n";
    int count = 0;
    while (file.pos() + piece.size() < size) {
        const auto number = static_cast<uint>(random());
        piece += QByteArray::number(++count) + ",\"Name, first " +
                 QByteArray::number(number % 1000) + "\",\"said \"\"" +
                 QByteArray::number(number % 97) + "\"\" twice\"," + "Long Street " +
                 QByteArray::number(number % 300) + "," + QByteArray::number(number % 100000) +
                 ".25,2024-01-" + QByteArray::number(10 + number % 20) + ",true,\"quoted note\"\n";
        if (piece.size() > 1 << 20) {
            file.write(piece);
            piece.clear();
        }
    }
    file.write(piece);
    return count;
}

struct Candidate {
    const char* name;
    /// Milliseconds of one reading.
    std::function<double()> measure;
    std::vector<double> times;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

int run(int megabytes, int rounds) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("table.csv");
    const int records = writeTable(path, qint64{megabytes} * 1000000);
    std::printf("%d MB, %d records, medians of %d rounds\n", megabytes, records, rounds);
    const auto check = [&](qint64 count) {
        if (count != records) {
            std::fprintf(stderr, "%lld records were read\n", static_cast<long long>(count));
            std::exit(1);
        }
    };
    const auto load = [&](bool withValues) {
        QElapsedTimer timer;
        timer.start();
        const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSet(path));
        for (int index = 0; withValues && index < set->count(); ++index)
            check(set->record(index)->valueAsString(7).isEmpty() ? -1 : records);
        const double time = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        check(set->count());
        return time;
    };
    Candidate candidates[] = {
        {"to records", [&] { return load(false); }, {}},
        {"to records, every value read", [&] { return load(true); }, {}},
        {"literal reading",
         [&] {
             QElapsedTimer timer;
             timer.start();
             QFile file(path);
             file.open(QIODevice::ReadOnly);
             LiteralReader reader(file.readAll());
             const QVector<QStringList> rows = reader.rows(',');
             const double time = static_cast<double>(timer.nsecsElapsed()) / 1e6;
             check(rows.size() - 1);
             return time;
         },
         {}},
        {"Python's csv.reader",
         [&] {
             QProcess python;
             python.start("/usr/bin/python3", {"-c", pythonReader, path});
             python.waitForFinished(-1);
             const QList<QByteArray> words = python.readAllStandardOutput().simplified().split(' ');
             check(words.value(1).toLongLong() - 1);
             return words.value(0).toDouble();
         },
         {}},
    };
    for (int round = 0; round < rounds; ++round) {
        for (Candidate& candidate : candidates)
            candidate.times.push_back(candidate.measure());
    }
    const double literal = median(candidates[2].times);
    const double python = median(candidates[3].times);
    for (const Candidate& candidate : candidates) {
        const double time = median(candidate.times);
        std::printf("%-30s %8.0f ms  %5.2f of csv.reader  %5.2f of the literal reading\n",
                    candidate.name, time, time / python, time / literal);
    }
    return 0;
}

}  // namespace
}  // namespace Tamrix

int main(int argc, char** argv) {
    const int megabytes = argc > 1 ? std::atoi(argv[1]) : 100;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    if (megabytes < 1 || megabytes > 1000 || rounds < 1) {
        std::fprintf(stderr, "usage: testdata_bench [MEGABYTES [ROUNDS]]\n");
        return 2;
    }
    return Tamrix::run(megabytes, rounds);
}
