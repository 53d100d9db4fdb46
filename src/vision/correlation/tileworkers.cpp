#include "vision/correlation/tileworkers.h"

#include <QRunnable>
#include <QSemaphore>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
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
    Helper(Share& share, int worker, QSemaphore& ended)
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
    QSemaphore& m_ended;
};

}  // namespace

int workerCount() {
    return std::max(1, QThreadPool::globalInstance()->maxThreadCount());
}

void forEachIndex(int count, int workers, const std::function<void(int, int)>& work) {
    Share share(count, work);
    QSemaphore ended;
    std::vector<std::unique_ptr<Helper>> helpers;
    int started = 0;
    for (int worker = 1; worker < std::min(workers, count); ++worker) {
        helpers.push_back(std::make_unique<Helper>(share, worker, ended));
        if (!QThreadPool::globalInstance()->tryStart(helpers.back().get()))
            break;
        ++started;
    }
    share.take(0);
    ended.acquire(started);
    share.rethrow();
}

}  // namespace Tamrix::Vision
