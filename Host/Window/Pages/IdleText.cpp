#include "Host/Window/Pages/IdleText.hpp"

#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Pages/ProgressTexts.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

namespace Varnholt::Host {

namespace {

struct IdleTexts {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::IdleText)
};

QString ElsewhereText(RunSnapshot const& p_Snapshot)
{
    ProgressTexts const texts = ProgressTexts::Of(p_Snapshot, std::nullopt, false);
    QStringList parts{IdleTexts::tr("Another program is at work here"), texts.Phase, texts.Percent};
    parts.removeAll({});
    return parts.join(QStringLiteral(" · "));
}

} // namespace

QString IdleText(GameState const& p_State)
{
    if (p_State.Session == GameState::Stage::Failed)
        return IdleTexts::tr("The game's module cannot be used");
    if (p_State.IsGameRunning)
        return IdleTexts::tr("The game runs; downloads wait until it has ended");
    if (!p_State.Status)
        return IdleTexts::tr("Opening…");
    InstallStatus const& status = *p_State.Status;
    if (status.Download)
        return ElsewhereText(status.Download->Snapshot);
    if (!status.IsInstalled)
        return IdleTexts::tr("Not installed");
    if (!status.FolderExists)
        return IdleTexts::tr("The folder %1 is not there")
            .arg(QDir::toNativeSeparators(status.Folder));
    if (status.IsUnfinished) {
        int const pending = status.PendingBase + status.PendingStreamed;
        return pending == 0
                   ? IdleTexts::tr("Not complete yet")
                   : IdleTexts::tr("Not complete yet: %n file(s) to come", nullptr, pending);
    }
    if (p_State.IsUpdateKnown)
        return IdleTexts::tr("An update is there");
    return status.Build.isEmpty() ? IdleTexts::tr("Installed")
                                  : IdleTexts::tr("Complete · build %1").arg(status.Build);
}

} // namespace Varnholt::Host
