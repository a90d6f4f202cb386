#include "GameModules/Pelmora/Pelmora.hpp"

#include "GameModules/TextFilePatch.hpp"
#include "Launcher/Application/ContentServer.hpp"
#include "Launcher/Application/LogCategories.hpp"
#include "Launcher/Application/RemoteText.hpp"

#include <QNetworkReply>

#include <memory>

namespace Varnholt::Launcher {

namespace {

/// False for any network or HTTP error, and for a redirect, whose body is not the file either.
bool Succeeded(QNetworkReply const& p_Reply)
{
    constexpr int c_FirstRedirect = 300;
    return p_Reply.error() == QNetworkReply::NoError &&
           p_Reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() < c_FirstRedirect;
}

QString const c_LocaleKey = QStringLiteral("locale");
QString const c_RealmListKey = QStringLiteral("realmlist");

/// The realm list's line when it is the last one, with an end; else nothing.
QString LastRealmList(QByteArray const& p_Text)
{
    QList<QByteArray> const lines = p_Text.split('\n');
    QString const last = QString::fromLocal8Bit(lines.value(lines.size() - 2));
    return last.contains(c_RealmListKey, Qt::CaseInsensitive) &&
                   !last.contains(c_LocaleKey, Qt::CaseInsensitive)
               ? last
               : QString();
}

/// Writes both lines of the language at once, behind all others. A start appends the realm list
/// behind them, as it stands there already as a rule: when that would give the file as it is,
/// nothing is written.
void WriteLanguage(QString const& p_File, QString const& p_Code)
{
    auto const before = TextFilePatch::Read(p_File);
    QByteArray after = TextFilePatch::Patched(before, c_LocaleKey,
                                              QStringLiteral("SET locale \"%1\"").arg(p_Code));
    after = TextFilePatch::Patched(after, QStringLiteral("installLocale"),
                                   QStringLiteral("SET installLocale \"%1\"").arg(p_Code));
    QString const realmList = before ? LastRealmList(*before) : QString();
    bool const isSettled =
        !realmList.isNull() && TextFilePatch::Patched(after, c_RealmListKey, realmList) == before;
    if (!isSettled)
        TextFilePatch::Write(p_File, after);
}

} // namespace

void Pelmora::SetAppLocale(QString p_Code)
{
    WriteSetting(SettingKey(".InstallLocale"), p_Code);
    QString const file = ConfigFile();
    if (!file.isNull())
        WriteLanguage(file, p_Code);
}

void Pelmora::AfterOnManifestReceived()
{
    // Silent, they would pile up and keep the few connections that a server is given from all else.
    if (RealmListRequest != nullptr)
        AbortFetch(*RealmListRequest);
    if (!IsInstalled())
        return;
    SetAppLocale(GetAppLocale());
    FetchRealmList();
}

void Pelmora::FetchRealmList()
{
    auto const request = std::make_shared<HTTP_GetRemotefileContentRequest*>(nullptr);
    *request =
        GetRemoteFileContent(DefaultContentBaseUrl() + AppId + QLatin1String("/realmlist.info"),
                             [this, request](QString const&, QByteArray* p_Data) {
                                 QNetworkReply const& reply = *(*request)->Reply;
                                 if (RealmListRequest == *request)
                                     RealmListRequest = nullptr;
                                 // What a failed fetch brings is not content: the game keeps the
                                 // line it has.
                                 if (!Succeeded(reply))
                                     return;
                                 QString const line = RemoteText::Of(*p_Data);
                                 qCWarning(LogLanguage) << GetName() << " Realmlist : " << line;
                                 QString const file = ConfigFile();
                                 if (!file.isNull())
                                     PatchWoWTextFile(file, c_RealmListKey, line, true);
                             });
    RealmListRequest = *request;
}

QString Pelmora::ConfigFile()
{
    GetInstallationPath();
    QString const folder = Folder();
    if (folder.isEmpty()) // the file would be one of the current folder
        return {};
    QString const config = QStringLiteral("WTF/Config.wtf");
    return Links.MakeRoom(folder, config) ? folder + config : QString();
}

} // namespace Varnholt::Launcher
