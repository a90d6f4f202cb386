#pragma once

#include "Host/Core/RunPhase.hpp"

#include <QMetaType>
#include <QString>
#include <QtGlobal>

namespace Varnholt::Host {

/// How a run stands at one moment. A value: safe to pass to any thread.
struct RunSnapshot {
    RunPhase Phase = RunPhase::Idle;
    quint32 FileNumber = 0; ///< from 1; 0 when no file is looked at
    quint32 FileCount = 0;
    QString File;           ///< path in the game folder; empty when unknown
    quint64 BytesDone = 0;  ///< never falls within a phase, never above `BytesTotal`
    quint64 BytesTotal = 0; ///< 0 outside the download phases
    quint64 Rate = 0;       ///< bytes per second over the last seconds
    qint64 Remaining = -1;  ///< seconds; negative when unknown
    QString Mirror;         ///< host (and port) that serves the current file

    bool operator==(RunSnapshot const& p_Other) const
    {
        return Phase == p_Other.Phase && FileNumber == p_Other.FileNumber &&
               FileCount == p_Other.FileCount && File == p_Other.File &&
               BytesDone == p_Other.BytesDone && BytesTotal == p_Other.BytesTotal &&
               Rate == p_Other.Rate && Remaining == p_Other.Remaining && Mirror == p_Other.Mirror;
    }
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::RunSnapshot)
