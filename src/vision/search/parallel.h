#pragma once

#include <QFuture>
#include <QImage>
#include <QList>
#include <QSharedPointer>
#include <QThreadPool>
#include <QtConcurrentMap>
#include <QtConcurrentRun>
#include <exception>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "base/export.h"

/// Tasks in the global thread pool whose exceptions reach whoever asks for the result.
namespace Tamrix::Vision {

/// What can be thrown again in another thread as what it is.
class TAMRIX_EXPORT Exception : public std::exception {
public:
    ~Exception() override;
    /// Throws a copy of this object as its most derived class.
    [[noreturn]] virtual void raise() const = 0;
    /// A copy of this object, which the caller owns.
    virtual Exception* clone() const = 0;
};

/// An image that can't be searched for.
class TAMRIX_EXPORT BadImage : public Exception {
public:
    explicit BadImage(const QImage& image) : m_image(image) {}
    ~BadImage() override;
    [[noreturn]] void raise() const override { throw *this; }
    BadImage* clone() const override { return new BadImage(*this); }

    const QImage& image() const { return m_image; }

private:
    QImage m_image;
};

class TAMRIX_EXPORT TooMuchTransparency : public BadImage {
public:
    using BadImage::BadImage;
    ~TooMuchTransparency() override;
    const char* what() const noexcept override;
    [[noreturn]] void raise() const override { throw *this; }
    TooMuchTransparency* clone() const override { return new TooMuchTransparency(*this); }
};

/// Stands for an exception of another kind; only the text is left of it.
class TAMRIX_EXPORT UnhandledException : public Exception {
public:
    explicit UnhandledException(const std::exception& exception) : m_text(exception.what()) {}
    ~UnhandledException() override;
    const char* what() const noexcept override { return m_text.c_str(); }
    [[noreturn]] void raise() const override { throw *this; }
    UnhandledException* clone() const override { return new UnhandledException(*this); }

private:
    std::string m_text;
};

/// How a task ended. A value; copies share the exception.
template <typename T>
struct ResultOrException {
    ResultOrException() = default;
    // Without "explicit": a task returns one or the other.
    ResultOrException(const T& value) : result(value) {}                       // NOLINT
    ResultOrException(const Exception& thrown) : exception(thrown.clone()) {}  // NOLINT

    /// The result; throws the exception, if there is one.
    const T& value() const {
        if (exception)
            exception->raise();
        return result;
    }

    /// Null for a result.
    QSharedPointer<Exception> exception;
    T result = T();
};

/// A function that returns what another one throws. Exceptions that are no std::exception are not
/// handled.
template <typename R, typename F>
class ExceptionalFunctor {
public:
    // QtConcurrent asks for this name.
    using result_type = ResultOrException<R>;

    explicit ExceptionalFunctor(F function) : m_function(std::move(function)) {}

    template <typename... Arguments>
    ResultOrException<R> operator()(Arguments&&... arguments) const {
        try {
            return ResultOrException<R>(
                std::invoke(m_function, std::forward<Arguments>(arguments)...));
        } catch (const Exception& exception) {
            return exception;
        } catch (const std::exception& exception) {
            return UnhandledException(exception);
        }
    }

private:
    F m_function;
};

/// Lets the global pool start another thread while this one only waits, so that tasks can wait for
/// tasks. Harmless in a thread that is none of the pool's.
class TAMRIX_EXPORT WaitingThread {
public:
    WaitingThread() { QThreadPool::globalInstance()->releaseThread(); }
    ~WaitingThread() { QThreadPool::globalInstance()->reserveThread(); }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;
};

/// The result of a task, or the results of a parallel map. Copies share the task, which runs to its
/// end even when all of them are gone.
template <typename T>
class Future {
public:
    Future() = default;
    explicit Future(const QFuture<ResultOrException<T>>& future) : m_future(future) {}

    /// Waits for the first result; throws the exception in its place.
    T result() const {
        const WaitingThread waiting;
        return m_future.result().value();
    }

    /// Waits for all results, which are in the order of the sequence; throws the first exception in
    /// this order.
    QList<T> results() const {
        waitForFinished();
        QList<T> list;
        const QList<ResultOrException<T>> ends = m_future.results();
        for (const ResultOrException<T>& end : ends)
            list.append(end.value());
        return list;
    }

    /// Calls consume(int index, ResultOrException<T> end) for each of `count` results, in the order
    /// of the sequence, as soon as it is there. What consume throws leaves when all tasks have
    /// finished: they may still use what the caller is about to destroy.
    template <typename Consume>
    void forEach(int count, Consume consume) const {
        const WaitingThread waiting;
        const Finish finish(m_future);
        for (int i = 0; i < count; ++i)
            consume(i, m_future.resultAt(i));
    }

    void waitForFinished() const {
        const WaitingThread waiting;
        const Finish finish(m_future);
    }

private:
    using TaskFuture = QFuture<ResultOrException<T>>;

    class Finish {
    public:
        explicit Finish(const TaskFuture& future) : m_future(future) {}
        ~Finish() { m_future.waitForFinished(); }
        Finish(const Finish&) = delete;
        Finish& operator=(const Finish&) = delete;

    private:
        TaskFuture m_future;
    };

    TaskFuture m_future;
};

/// Starts the function with copies of the arguments in the global pool.
template <typename F, typename... Arguments>
auto run(F function, Arguments... arguments) {
    using R = std::decay_t<std::invoke_result_t<F, Arguments...>>;
    const auto call = [function, arguments...]() -> R {
        return std::invoke(function, arguments...);
    };
    return Future<R>(QtConcurrent::run(ExceptionalFunctor<R, decltype(call)>(call)));
}

/// Starts the function for each element of the sequence in the global pool. The future keeps a copy
/// of the sequence.
template <typename Sequence, typename F>
auto mapped(const Sequence& sequence, F function) {
    using R = std::decay_t<std::invoke_result_t<F, typename Sequence::const_reference>>;
    return Future<R>(QtConcurrent::mapped(sequence, ExceptionalFunctor<R, F>(function)));
}

}  // namespace Tamrix::Vision
