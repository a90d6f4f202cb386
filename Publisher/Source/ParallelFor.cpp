#include "Publisher/Source/ParallelFor.hpp"

#include <QRunnable>
#include <QThreadPool>

#include <atomic>
#include <exception>
#include <mutex>

namespace Varnholt::Publisher {

namespace {

class Share {
public:
    Share(std::size_t p_Count, std::function<void(std::size_t)> const& p_Work)
        : Count(p_Count)
        , Work(p_Work)
        , FailedIndex(p_Count)
    {
    }

    void RunOnThisThread()
    {
        for (std::size_t i = Next++; i < Count && !Failed; i = Next++) {
            try {
                Work(i);
            } catch (...) {
                Keep(i, std::current_exception());
            }
        }
    }

    void ThrowFailure() const
    {
        if (Exception)
            std::rethrow_exception(Exception);
    }

private:
    void Keep(std::size_t p_Index, std::exception_ptr const& p_Exception)
    {
        std::lock_guard const lock(Mutex);
        Failed = true;
        if (p_Index < FailedIndex) {
            FailedIndex = p_Index;
            Exception = p_Exception;
        }
    }

    std::size_t const Count;
    std::function<void(std::size_t)> const& Work;
    std::atomic<std::size_t> Next{0};
    std::atomic<bool> Failed{false};
    std::mutex Mutex;
    std::size_t FailedIndex;
    std::exception_ptr Exception;
};

} // namespace

void ParallelFor(std::size_t p_Count, std::function<void(std::size_t)> const& p_Work, int p_Jobs)
{
    Share share(p_Count, p_Work);
    QThreadPool pool;
    if (p_Jobs > 0)
        pool.setMaxThreadCount(p_Jobs);
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        pool.start(QRunnable::create([&share] { share.RunOnThisThread(); }));
    pool.waitForDone();
    share.ThrowFailure();
}

} // namespace Varnholt::Publisher
