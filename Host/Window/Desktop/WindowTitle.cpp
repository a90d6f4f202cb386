#include "Host/Window/Desktop/WindowTitle.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <QCoreApplication>

#include <algorithm>

namespace Varnholt::Host {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::WindowTitle)
};

/// Of bytes where they are counted, else of files; the phase when there is no measure.
QString Progress(RunSnapshot const& p_Snapshot)
{
    constexpr quint64 c_Whole = 100;

    bool const isOfBytes = p_Snapshot.BytesTotal > 0;
    quint64 const total = isOfBytes ? p_Snapshot.BytesTotal : p_Snapshot.FileCount;
    quint64 const done = isOfBytes ? p_Snapshot.BytesDone : p_Snapshot.FileNumber;
    return total == 0 ? RunText::Capitalized(PhaseText(p_Snapshot.Phase))
                      : Texts::tr("%1 %").arg(std::min(done, total) * c_Whole / total);
}

QString WhatHappens(GameState const& p_State)
{
    if (p_State.Job)
        return p_State.IsPaused ? Texts::tr("Paused") : Progress(p_State.Snapshot);
    if (p_State.Problem)
        return Texts::tr("Problem");
    return p_State.IsGameRunning ? Texts::tr("Playing") : QString();
}

} // namespace

QString WindowTitle(QString const& p_Game, GameState const& p_State)
{
    QString const what = WhatHappens(p_State);
    return what.isEmpty() ? p_Game : Texts::tr("%1 – %2").arg(what, p_Game);
}

} // namespace Varnholt::Host
