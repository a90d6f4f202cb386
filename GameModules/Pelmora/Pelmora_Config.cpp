#include "GameModules/Pelmora/Pelmora.hpp"

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

} // namespace

void Pelmora::SetAppLocale(QString p_Code)
{
    WriteSetting(SettingKey(".InstallLocale"), p_Code);
    WriteConfigLine(QStringLiteral("locale"), QStringLiteral("SET locale \"%1\"").arg(p_Code));
    WriteConfigLine(QStringLiteral("installLocale"),
                    QStringLiteral("SET installLocale \"%1\"").arg(p_Code));
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
                                 QString const line = RemoteText(*p_Data);
                                 qCWarning(LogLanguage) << GetName() << " Realmlist : " << line;
                                 WriteConfigLine(QStringLiteral("realmlist"), line);
                             });
    RealmListRequest = *request;
}

void Pelmora::WriteConfigLine(QString const& p_Key, QString const& p_Line)
{
    GetInstallationPath();
    QString const folder = Folder();
    if (folder.isEmpty()) // the file would be one of the current folder
        return;
    QString const config = QStringLiteral("WTF/Config.wtf");
    if (Links.MakeRoom(folder, config))
        PatchWoWTextFile(folder + config, p_Key, p_Line, true);
}

} // namespace Varnholt::Launcher
