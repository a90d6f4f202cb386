#include "Host/Core/Network/NetworkDoor.hpp"

#include "Host/Core/Network/FetchFailure.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QUrl>

#include <chrono>

namespace Varnholt::Host {

namespace {

Q_LOGGING_CATEGORY(LogNetwork, "varnholt.network")

constexpr char c_Variable[] = "VARNHOLT_CONTENT_BASE_URL";
QString const c_DefaultServer = QStringLiteral("d/"); // below the door's address
QString const c_Mirrors = QStringLiteral("m/");
QString const c_MirrorsName = QStringLiteral("mirrors/"); // which of them, the door decides

/// What Qt asks a server for behind p_Base.
std::string BehindBase(QString const& p_Base, QString const& p_Path)
{
    QByteArray const url = QUrl(p_Base + p_Path, QUrl::TolerantMode)
                               .toEncoded(QUrl::RemoveFragment | QUrl::NormalizePathSegments);
    return url.mid(p_Base.size()).toStdString(); // the door's own address needs no encoding
}

std::optional<QByteArray> Variable()
{
    if (!qEnvironmentVariableIsSet(c_Variable))
        return std::nullopt;
    return qgetenv(c_Variable);
}

Gateway::GatewayOptions OptionsOf(HostOptions const& p_Options, QUrl const& p_Server)
{
    using std::chrono::milliseconds;

    bool const isNamed = !p_Options.ContentUser.isEmpty();
    Gateway::GatewayOptions options;
    options.ContentServer = p_Server.toEncoded(QUrl::RemoveUserInfo).toStdString();
    options.User = (isNamed ? p_Options.ContentUser : p_Server.userName()).toStdString();
    options.Password = (isNamed ? p_Options.ContentPassword : p_Server.password()).toStdString();
    options.NetrcFile = p_Options.NetrcFile.toStdString();
    options.CaFile = p_Options.CaFile.toStdString();
    options.Proxy = p_Options.Proxy.toStdString();
    options.HttpsMirrors = p_Options.HttpsMirrors;
    options.Connections = p_Options.Connections;
    options.BytesPerSecond = p_Options.BytesPerSecond;
    options.ConnectTimeout = milliseconds(p_Options.ConnectMilliseconds);
    options.StallTime = milliseconds(p_Options.StallMilliseconds);
    options.RetryPause = milliseconds(p_Options.RetryPauseMilliseconds);
    options.RetryFor = milliseconds(p_Options.RetryForMilliseconds);
    options.CopyDelay = milliseconds(p_Options.CopyDelayMilliseconds);
    options.OnFailure = [](Gateway::FetchProblem const& p_Problem) {
        qCInfo(LogNetwork).noquote() << "a try has failed:" << QString::fromStdString(p_Problem.Url)
                                     << '(' + CauseText(p_Problem) + ')';
    };
    return options;
}

/// A refusal is a problem too.
void Judge(Gateway::Reply& p_Reply, std::string const& p_Url)
{
    constexpr int c_FirstError = 400;

    if (!p_Reply.Problem && p_Reply.HttpStatus >= c_FirstError)
        p_Reply.Problem = Gateway::FetchProblem{
            Gateway::FetchProblem::Type::Refused, p_Url, Gateway::FetchProblem::Cause::Status,
            p_Reply.HttpStatus, std::to_string(p_Reply.HttpStatus)};
}

} // namespace

NetworkDoor::NetworkDoor(HostOptions const& p_Options, QObject& p_Owner)
    : Owner(p_Owner)
    , FormerUrl(Variable())
    , Server(QUrl(p_Options.ContentServer()).toString(QUrl::RemoveUserInfo))
    , Door(Gateway::Gateway::Create(OptionsOf(p_Options, p_Options.ContentServer())))
    , Base(QString::fromStdString(Door->BaseUrl()))
{
    if (!IsOpen())
        return;
    Announce();
    p_Options.Names->Set({{Base + c_DefaultServer, Server}, {Base + c_Mirrors, c_MirrorsName}});
}

NetworkDoor::~NetworkDoor()
{
    Door.reset(); // its threads read the environment
    if (IsOpen())
        Withdraw();
}

void NetworkDoor::Announce() const
{
    qputenv(c_Variable, (Base + c_DefaultServer).toUtf8());
}

void NetworkDoor::Withdraw() const
{
    if (FormerUrl)
        qputenv(c_Variable, *FormerUrl);
    else
        qunsetenv(c_Variable);
}

std::string NetworkDoor::PathOf(QString const& p_Location) const
{
    return BehindBase(Base + c_Mirrors, AppId + QLatin1Char('/') + p_Location);
}

std::string NetworkDoor::PathIn(QString const& p_Url) const
{
    QString const server = p_Url.mid(Base.size(), c_Mirrors.size());
    return BehindBase(Base + server, p_Url.mid(Base.size() + server.size()));
}

std::optional<quint64> NetworkDoor::SizeOf(QString const& p_Location) const
{
    return Door->SizeOf(PathOf(p_Location));
}

NetworkDoor::Problem NetworkDoor::ProblemOf(QString const& p_Location) const
{
    return Door->ProblemOf(PathOf(p_Location));
}

Gateway::PlannedFile NetworkDoor::Planned(Launcher::ApplicationManifestFileEntry const& p_Entry,
                                          QString const& p_Path) const
{
    Gateway::PlannedFile file;
    file.Path = PathOf(p_Entry.Location);
    file.Offset = static_cast<quint64>(QFileInfo(Launcher::Helper::Paths::PartFile(p_Path)).size());
    file.OfDefaultServer = p_Entry.Has(Launcher::ApplicationManifestFileEntry::DefaultServerOnly);
    return file;
}

void NetworkDoor::Ask(Gateway::Question p_Question, QObject& p_Context,
                      std::function<void(Gateway::Reply const&)> p_OnReply)
{
    QPointer<QObject> const context(&p_Context);
    std::string const url = p_Question.Server + p_Question.Path;
    Door->Ask(std::move(p_Question),
              [this, context, url, onReply = std::move(p_OnReply)](Gateway::Reply p_Reply) {
                  Judge(p_Reply, url);
                  QMetaObject::invokeMethod(
                      &Owner,
                      [context, onReply, p_Reply] {
                          if (context)
                              onReply(p_Reply);
                      },
                      Qt::QueuedConnection);
              });
}

NetworkDoor::Outside::Outside(NetworkDoor& p_Door)
    : Door(p_Door)
{
    Door.Withdraw();
}

NetworkDoor::Outside::~Outside()
{
    Door.Announce();
}

} // namespace Varnholt::Host
