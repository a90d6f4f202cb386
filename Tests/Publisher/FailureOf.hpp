#pragma once

#include "Publisher/Failure.hpp"

#include <QString>

namespace Varnholt::TestSupport {

/// What a call has failed with.
struct CaughtFailure {
    QString Sentence; ///< null when it did not fail
    int ExitStatus = 0;
};

template <typename Call>
CaughtFailure FailureOf(Call const& p_Call)
{
    try {
        p_Call();
    } catch (Publisher::Failure const& failure) {
        return {QString::fromUtf8(failure.what()), failure.ExitStatus()};
    }
    return {};
}

} // namespace Varnholt::TestSupport
