#include "Tests/Support/TestHost.hpp"

#include <QMutexLocker>

namespace Varnholt::TestSupport {

namespace {

/// The host that the plain functions of the callback table speak for.
std::atomic<TestHost*> s_Current{nullptr};

} // namespace

void TestHost::FillCallbackTable()
{
    s_Current = this;
    App.ErrorReporter = [](QString p_Message, bool p_Flag) {
        TestHost& host = *s_Current;
        {
            QMutexLocker const lock(&host.Mutex);
            host.Reports += p_Message;
        }
        if (p_Flag)
            ++host.ErrorFlags;
        if (host.OnError)
            host.OnError(p_Message);
    };
    App.ReadSetting = [](QString p_Key, QVariant p_Default) {
        QMutexLocker const lock(&s_Current.load()->Mutex);
        return s_Current.load()->Settings.value(p_Key, p_Default);
    };
    App.WriteSetting = [](QString p_Key, QVariant p_Value) {
        QMutexLocker const lock(&s_Current.load()->Mutex);
        s_Current.load()->Settings[p_Key] = p_Value;
        s_Current.load()->Changes += p_Key;
    };
    App.ListSettingKeys = [] { return s_Current.load()->SettingKeys(); };
    App.RemoveSetting = [](QString p_Key) {
        QMutexLocker const lock(&s_Current.load()->Mutex);
        s_Current.load()->Settings.remove(p_Key);
        s_Current.load()->Changes += QLatin1Char('-') + p_Key;
    };
    App.CurrentLauncherLocale = [] {
        return Launcher::LauncherLocale::Table().at(s_Current.load()->LocaleIndex);
    };
    App.IsDownloadBlocked = [] {
        ++s_Current.load()->BlockedQuestions;
        return s_Current.load()->DownloadBlocked.load();
    };
    App.NotifyDownloadStarting = [] {
        TestHost& host = *s_Current;
        ++host.StartingCount;
        if (host.OnDownloadStarting)
            host.OnDownloadStarting();
    };
    App.NotifyDownloadFinished = [] {
        TestHost& host = *s_Current;
        ++host.FinishedCount;
        if (host.OnDownloadFinished)
            host.OnDownloadFinished();
    };
    App.ShouldContinue = [] {
        TestHost& host = *s_Current;
        ++host.ContinueQuestions;
        if (host.ContinueAnswersLeft >= 0 && host.ContinueAnswersLeft-- == 0) {
            host.ContinueAnswersLeft = 0;
            return false;
        }
        return host.Continue.load();
    };
    App.UseDevChannel = [] { return s_Current.load()->DevChannel.load(); };
}

} // namespace Varnholt::TestSupport
