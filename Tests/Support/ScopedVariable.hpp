#pragma once

#include <QByteArray>

namespace Varnholt::TestSupport {

/// Sets an environment variable as long as it lives.
class ScopedVariable {
public:
    ScopedVariable(char const* p_Name, QByteArray const& p_Value)
        : Name(p_Name)
        , Before(qgetenv(p_Name))
        , WasSet(qEnvironmentVariableIsSet(p_Name))
    {
        qputenv(p_Name, p_Value);
    }
    ~ScopedVariable()
    {
        if (WasSet)
            qputenv(Name, Before);
        else
            qunsetenv(Name);
    }
    ScopedVariable(ScopedVariable const&) = delete;
    ScopedVariable& operator=(ScopedVariable const&) = delete;

private:
    char const* Name;
    QByteArray Before;
    bool WasSet;
};

} // namespace Varnholt::TestSupport
