#include "vision/search/fastcorrelation/tileworkers.h"

#include <QRunnable>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <semaphore>
#include <vector>

namespace Tamrix::Vision {
namespace {

class Share {
public:
    Share(int count, const std::function<void(int, int)>& work) : m_count(count), m_work(work) {}

    void take(int worker) noexcept {
        for (int index = m_next++; index < m_count; index = m_next++) {
            try {
                m_work(index, worker);
            } catch (...) {
                const std::lock_guard lock(m_mutex);
                if (!m_failure)
                    m_failure = std::current_exception();
                m_next = m_count;
            }
        }
    }

    void rethrow() const {
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    const int m_count;
    const std::function<void(int, int)>& m_work;
    std::atomic<int> m_next{0};
    std::mutex m_mutex;
    std::exception_ptr m_failure;
};

class Helper : public QRunnable {
public:
    Helper(Share& share, int worker, std::counting_semaphore<>& ended)
        : m_share(share), m_worker(worker), m_ended(ended) {
        setAutoDelete(false);
    }

    void run() override {
        m_share.take(m_worker);
        m_ended.release();
    }

private:
    Share& m_share;
    const int m_worker;
    std::counting_semaphore<>& m_ended;
};

}  // namespace

int workerCount() {
    return std::max(1, QThreadPool::globalInstance()->maxThreadCount());
}

void forEachIndex(int count, int workers, const std::function<void(int, int)>& work) {
    Share share(count, work);
    std::counting_semaphore<> ended(0);
    std::vector<std::unique_ptr<Helper>> helpers;
    int started = 0;
    for (int worker = 1; worker < std::min(workers, count); ++worker) {
        helpers.push_back(std::make_unique<Helper>(share, worker, ended));
        if (!QThreadPool::globalInstance()->tryStart(helpers.back().get()))
            break;
        ++started;
    }
    share.take(0);
    for (; started > 0; --started)
        ended.acquire();
    share.rethrow();
}

}  // namespace Tamrix::Vision
