#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

namespace Varnholt::TestSupport {

/// Lets no file of this process grow beyond some bytes, as long as it lives: a disk that is full,
/// for tests that may not mount one.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t p_Bytes)
        : HandlerBefore(std::signal(SIGXFSZ, SIG_IGN))
    {
        if (getrlimit(RLIMIT_FSIZE, &Before) != 0)
            qFatal("the limit of file sizes cannot be read");
        rlimit limit = Before;
        limit.rlim_cur = p_Bytes;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("the limit of file sizes cannot be set");
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &Before);
        std::signal(SIGXFSZ, HandlerBefore);
    }
    FileSizeLimit(FileSizeLimit const&) = delete;
    FileSizeLimit& operator=(FileSizeLimit const&) = delete;

private:
    rlimit Before = {};
    void (*HandlerBefore)(int);
};

} // namespace Varnholt::TestSupport
