#include "Publisher/ParallelFor.hpp"

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
        : m_Count(p_Count)
        , m_Work(p_Work)
        , m_FailedIndex(p_Count)
    {
    }

    void RunOnThisThread()
    {
        for (std::size_t i = m_Next++; i < m_Count && !m_Failed; i = m_Next++) {
            try {
                m_Work(i);
            } catch (...) {
                Keep(i, std::current_exception());
            }
        }
    }

    void ThrowFailure() const
    {
        if (m_Exception)
            std::rethrow_exception(m_Exception);
    }

private:
    void Keep(std::size_t p_Index, std::exception_ptr const& p_Exception)
    {
        std::lock_guard const lock(m_Mutex);
        m_Failed = true;
        if (p_Index < m_FailedIndex) {
            m_FailedIndex = p_Index;
            m_Exception = p_Exception;
        }
    }

    std::size_t const m_Count;
    std::function<void(std::size_t)> const& m_Work;
    std::atomic<std::size_t> m_Next{0};
    std::atomic<bool> m_Failed{false};
    std::mutex m_Mutex;
    std::size_t m_FailedIndex;
    std::exception_ptr m_Exception;
};

} // namespace

void ParallelFor(std::size_t p_Count, std::function<void(std::size_t)> const& p_Work)
{
    Share share(p_Count, p_Work);
    QThreadPool pool;
    for (int i = 0; i < pool.maxThreadCount(); ++i)
        pool.start(QRunnable::create([&share] { share.RunOnThisThread(); }));
    pool.waitForDone();
    share.ThrowFailure();
}

} // namespace Varnholt::Publisher
