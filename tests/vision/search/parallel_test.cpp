#include "vision/search/parallel.h"

#include <gtest/gtest.h>

#include <QThread>
#include <atomic>
#include <new>
#include <numeric>

namespace Tamrix::Vision {
namespace {

const QImage badImage(3, 2, QImage::Format_RGB32);

TEST(Parallel, ExceptionsKeepTheirTypeAndText) {
    const auto badTask = run([]() -> int { throw TooMuchTransparency(badImage); });
    try {
        badTask.result();
        FAIL() << "nothing thrown";
    } catch (const BadImage& exception) {
        EXPECT_NE(dynamic_cast<const TooMuchTransparency*>(&exception), nullptr);
        EXPECT_STREQ(exception.what(), "The image has too much transparency");
        EXPECT_EQ(exception.image().size(), badImage.size());
    }
    // Again, since copies of a future share the task.
    EXPECT_THROW(badTask.result(), TooMuchTransparency);

    const auto noMemory = run([](int) -> int { throw std::bad_alloc(); }, 1);
    try {
        noMemory.result();
        FAIL() << "nothing thrown";
    } catch (const UnhandledException& exception) {
        EXPECT_STREQ(exception.what(), std::bad_alloc().what());
    }
}

TEST(Parallel, TheFirstFailureInSequenceIsTold) {
    const auto future = mapped(QList<int>{1, 2, 3}, [](int number) {
        if (number == 2)
            QThread::msleep(20);
        if (number >= 2)
            throw std::runtime_error(std::to_string(number));
        return number;
    });
    try {
        future.results();
        FAIL() << "nothing thrown";
    } catch (const UnhandledException& exception) {
        EXPECT_STREQ(exception.what(), "2");
    }
    EXPECT_EQ(mapped(QList<int>{1, 2, 3}, [](int number) { return 2 * number; }).results(),
              (QList<int>{2, 4, 6}));
}

TEST(Parallel, WhatConsumesResultsFailsOnlyWhenAllTasksAreDone) {
    std::atomic<int> done = 0;
    const QList<int> numbers = {0, 1, 2, 3, 4, 5, 6, 7};
    const auto future = mapped(numbers, [&](int number) {
        if (number > 0)
            QThread::msleep(5);
        ++done;
        return number;
    });
    EXPECT_THROW(future.forEach(numbers.size(),
                                [](int, const ResultOrException<int>&) {
                                    throw TooMuchTransparency(badImage);
                                }),
                 BadImage);
    EXPECT_EQ(done, numbers.size());
}

// Each level has more tasks than the pool has threads, and all but the innermost ones wait.
TEST(Parallel, NestedMapsEnd) {
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    QList<int> numbers;
    for (int i = 0; i < 3 * threads; ++i)
        numbers.append(1);
    const auto sum = [](const QList<int>& list) {
        return std::accumulate(list.begin(), list.end(), 0);
    };
    const auto inner = [&](int) {
        return mapped(numbers, [](int number) { return run([=] { return number; }).result(); });
    };
    const auto middle = [&](int) {
        int total = 0;
        inner(0).forEach(numbers.size(),
                         [&](int, const ResultOrException<int>& end) { total += end.value(); });
        return total;
    };
    const auto outer = [&](int) { return sum(mapped(numbers, middle).results()); };
    const int count = numbers.size();
    EXPECT_EQ(sum(mapped(numbers, outer).results()), count * count * count);
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_EQ(QThreadPool::globalInstance()->activeThreadCount(), 0);
    EXPECT_EQ(QThreadPool::globalInstance()->maxThreadCount(), threads);
}

}  // namespace
}  // namespace Tamrix::Vision
