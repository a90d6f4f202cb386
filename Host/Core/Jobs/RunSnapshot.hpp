#pragma once

#include "Host/Core/Folder/VolumeSpace.hpp"
#include "Host/Core/Jobs/RunPhase.hpp"

#include <QMetaType>
#include <QString>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace Varnholt::Host {

/// What one server contributes.
struct ServerShare {
    QString Name;     ///< host and port
    quint64 Rate = 0; ///< bytes per second over the last seconds

    bool operator==(ServerShare const& p_Other) const
    {
        return Name == p_Other.Name && Rate == p_Other.Rate;
    }
};

struct ServerWait {
    QString Server; ///< host and port
    QString Cause;
    qint64 Silent = 0;      ///< seconds since the last byte
    qint64 NextAttempt = 0; ///< seconds; 0: under way
    int Attempt = 1;        ///< the number of that one
    int Attempts = 0;       ///< that there will be at most; 0: no limit

    /// Whether something has failed that is tried again; otherwise a server is only silent.
    bool IsRetry() const { return Attempt > 1; }

    bool operator==(ServerWait const& p_Other) const
    {
        return Server == p_Other.Server && Cause == p_Other.Cause && Silent == p_Other.Silent &&
               NextAttempt == p_Other.NextAttempt && Attempt == p_Other.Attempt &&
               Attempts == p_Other.Attempts;
    }
};

/// How a run stands at one moment. A value: safe to pass to any thread.
struct RunSnapshot {
    RunPhase Phase = RunPhase::Idle;
    quint32 FileNumber = 0; ///< from 1; 0 when no file is looked at
    quint32 FileCount = 0;
    QString File;              ///< path in the game folder; empty when unknown
    quint64 BytesDone = 0;     ///< never falls within a phase, never above `BytesTotal`
    quint64 BytesTotal = 0;    ///< of the files that arrive or are looked at; 0 otherwise
    quint64 Rate = 0;          ///< bytes per second over the last seconds
    qint64 Remaining = -1;     ///< seconds; negative when unknown
    QString Mirror;            ///< host (and port) that gave the latest bytes
    quint64 BytesReceived = 0; ///< from the network, since the run began
    bool IsHeld = false;       ///< by a pause: no file grows, and none begins
    std::vector<ServerShare> Servers;
    /// As it was before the first byte of the latest list of files; empty until that is known.
    std::vector<VolumeSpace> Space;
    std::optional<ServerWait> Wait; ///< nothing arrives

    bool operator==(RunSnapshot const& p_Other) const
    {
        return Phase == p_Other.Phase && FileNumber == p_Other.FileNumber &&
               FileCount == p_Other.FileCount && File == p_Other.File &&
               BytesDone == p_Other.BytesDone && BytesTotal == p_Other.BytesTotal &&
               Rate == p_Other.Rate && Remaining == p_Other.Remaining && Mirror == p_Other.Mirror &&
               BytesReceived == p_Other.BytesReceived && IsHeld == p_Other.IsHeld &&
               Servers == p_Other.Servers && Space == p_Other.Space && Wait == p_Other.Wait;
    }
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::RunSnapshot)
