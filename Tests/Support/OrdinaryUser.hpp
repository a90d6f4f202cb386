#pragma once

#include <QtTest>

#include <unistd.h>

namespace Varnholt::TestSupport {

/// Makes the process one of a user whom permissions stop, as long as it lives; for tests that run
/// as root. What it creates meanwhile is that user's. Changes nothing for anybody else.
class OrdinaryUser {
public:
    OrdinaryUser()
        : WasRoot(geteuid() == 0)
    {
#ifdef Q_OS_LINUX
        constexpr unsigned c_Nobody = 65534;
        // The real one too: it is what access() looks at. The saved one is the way back.
        if (WasRoot &&
            (setresgid(c_Nobody, c_Nobody, 0) != 0 || setresuid(c_Nobody, c_Nobody, 0) != 0))
            qFatal("cannot become an ordinary user");
#endif
    }
    ~OrdinaryUser()
    {
#ifdef Q_OS_LINUX
        if (WasRoot && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0))
            qFatal("cannot become root again");
#endif
    }
    OrdinaryUser(OrdinaryUser const&) = delete;
    OrdinaryUser& operator=(OrdinaryUser const&) = delete;

    /// False where root cannot give its rights away for a while.
    static bool IsPossible()
    {
#ifdef Q_OS_LINUX
        return true;
#else
        return geteuid() != 0;
#endif
    }

private:
    bool WasRoot;
};

} // namespace Varnholt::TestSupport

/// Lets the rest of a test function be that user's, or skips it.
#define VARNHOLT_AS_ORDINARY_USER()                                                                \
    if (!Varnholt::TestSupport::OrdinaryUser::IsPossible())                                        \
        QSKIP("root is not stopped by permissions");                                               \
    Varnholt::TestSupport::OrdinaryUser const ordinaryUser
