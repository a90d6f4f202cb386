#include "Host/Core/Module/HostCallbacks.hpp"

#include <QReadWriteLock>

namespace Varnholt::Host::HostCallbacks {

namespace {

// Read-locked by a callback for as long as it uses the environment. Recursive, since a callback may
// lead to another one.
QReadWriteLock g_EnvironmentLock(QReadWriteLock::Recursive);
HostEnvironment* g_Environment = nullptr;

/// Calls p_Use with the environment, or answers p_Otherwise when there is none.
template <typename Result, typename Use>
Result Ask(Result p_Otherwise, Use p_Use)
{
    QReadLocker const lock(&g_EnvironmentLock);
    return g_Environment == nullptr ? p_Otherwise : p_Use(*g_Environment);
}

template <typename Use>
void Tell(Use p_Use)
{
    QReadLocker const lock(&g_EnvironmentLock);
    if (g_Environment != nullptr)
        p_Use(*g_Environment);
}

void InstallSettings(Launcher::Application& p_Application)
{
    p_Application.ReadSetting = [](QString p_Key, QVariant p_Default) {
        return Ask(p_Default, [&](HostEnvironment& p_Host) {
            bool const hidden =
                p_Host.Gate.IsPreview() && p_Key.endsWith(QLatin1String(".Installed"));
            return hidden ? p_Default : p_Host.Settings.Value(p_Key, p_Default);
        });
    };
    p_Application.WriteSetting = [](QString p_Key, QVariant p_Value) {
        Tell([&](HostEnvironment& p_Host) {
            if (!p_Host.Gate.IsPreview())
                p_Host.Settings.SetValue(p_Key, p_Value);
        });
    };
    p_Application.ListSettingKeys = [] {
        return Ask(QStringList(), [](HostEnvironment& p_Host) { return p_Host.Settings.Keys(); });
    };
    p_Application.RemoveSetting = [](QString p_Key) {
        Tell([&](HostEnvironment& p_Host) {
            if (!p_Host.Gate.IsPreview())
                p_Host.Settings.Remove(p_Key);
        });
    };
}

} // namespace

bool Claim(HostEnvironment& p_Environment)
{
    QWriteLocker const lock(&g_EnvironmentLock);
    if (g_Environment == nullptr)
        g_Environment = &p_Environment;
    return g_Environment == &p_Environment;
}

void SetLocale(HostEnvironment& p_Environment, Launcher::LauncherLocale const& p_Locale)
{
    QWriteLocker const lock(&g_EnvironmentLock);
    p_Environment.Locale = p_Locale;
}

void Install(Launcher::Application& p_Application)
{
    InstallSettings(p_Application);
    p_Application.ErrorReporter = [](QString p_Message, bool) {
        Tell([&](HostEnvironment& p_Host) { p_Host.OnError(p_Message); });
    };
    p_Application.CurrentLauncherLocale = [] {
        return Ask(Launcher::LauncherLocale::Table()[0],
                   [](HostEnvironment& p_Host) { return p_Host.Locale; });
    };
    p_Application.IsDownloadBlocked = [] {
        return Ask(true, [](HostEnvironment& p_Host) { return !p_Host.Gate.IsOpenForDownload(); });
    };
    p_Application.NotifyDownloadStarting = [] {
        Tell([](HostEnvironment& p_Host) { p_Host.OnDownloadStarting(); });
    };
    p_Application.NotifyDownloadFinished = [] {};
    p_Application.ShouldContinue = [] {
        return Ask(false, [](HostEnvironment& p_Host) {
            p_Host.Gate.CountQuestion();
            return p_Host.Gate.IsOpen();
        });
    };
    p_Application.UseDevChannel = [] {
        return Ask(false, [](HostEnvironment& p_Host) { return p_Host.UseDevChannel; });
    };
}

void Remove(HostEnvironment& p_Environment)
{
    QWriteLocker const lock(&g_EnvironmentLock);
    if (g_Environment == &p_Environment)
        g_Environment = nullptr;
}

} // namespace Varnholt::Host::HostCallbacks
