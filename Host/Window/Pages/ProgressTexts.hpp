#pragma once

#include "Host/Core/Jobs/RunSnapshot.hpp"

#include <QString>

#include <optional>

namespace Varnholt::Host {

/// A snapshot in words and numbers of the program's language.
struct ProgressTexts {
    QString Phase;     ///< begins with a capital
    QString Percent;   ///< empty when there is no measure
    QString Left;      ///< "4 minutes left", or that it is not known; empty when nothing moves
    QString Amount;    ///< "1.2 GiB of 3.4 GiB · 12.3 MiB/s"
    QString Count;     ///< "File 3 of 12"
    QString File;      ///< of which the middle may be left out
    int Permille = -1; ///< negative when there is no measure

    /// \param p_Left seconds; none when it is not known \param p_IsPaused though it may not hold
    /// yet
    static ProgressTexts Of(RunSnapshot const& p_Snapshot, std::optional<qint64> p_Left,
                            bool p_IsPaused);
    /// What is waited for, and when a server is asked again.
    static QString WaitText(ServerWait const& p_Wait);
    /// "12.3 MiB"
    static QString Size(quint64 p_Bytes);
    /// "4 minutes", rounded so that it need not change often.
    static QString Duration(qint64 p_Seconds);
};

} // namespace Varnholt::Host
