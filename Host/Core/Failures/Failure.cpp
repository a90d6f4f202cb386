#include "Host/Core/Failures/Failure.hpp"

#include "Host/Core/Failures/TextTemplate.hpp"

#include <QCoreApplication>
#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

constexpr int c_NetworkStatus = 5;
constexpr int c_DistrustStatus = 10;

struct FailureRow {
    FailureKind Kind;
    int ExitStatus;
    char const* Identifier;
    char const* Sentence; ///< {s} is the subject, {d} the detail
    char const* Remedy;
};

struct FailureTable {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::Failure)

public:
    static constexpr FailureRow c_Rows[] = {
        {FailureKind::Other, 1, "other", "{s}: {d}", QT_TR_NOOP("try again")},
        {FailureKind::NotInstalled, 1, "not-installed", QT_TR_NOOP("{s} is not installed"),
         QT_TR_NOOP("install it first")},
        {FailureKind::LocaleNotOffered, 2, "locale-not-offered",
         QT_TR_NOOP("the build does not offer the language \"{s}\""),
         QT_TR_NOOP("choose one of: {d}")},
        {FailureKind::ModuleMissing, 9, "module-missing", QT_TR_NOOP("there is no module file {s}"),
         QT_TR_NOOP("check its name, or install the module again")},
        {FailureKind::ModuleForeign, 9, "module-foreign",
         QT_TR_NOOP("the file {s} is not a launcher module ({d})"),
         QT_TR_NOOP("choose another module file")},
        {FailureKind::ModuleUnloadable, 9, "module-unloadable",
         QT_TR_NOOP("the module {s} cannot be loaded ({d})"),
         QT_TR_NOOP("install what it lacks, or the module again")},
        {FailureKind::ModuleNotLoaded, 9, "module-not-loaded",
         QT_TR_NOOP("the module {s} is not loaded"), QT_TR_NOOP("open the session first")},
        {FailureKind::SessionBusy, 8, "session-busy",
         QT_TR_NOOP("{s} is busy with another request"),
         QT_TR_NOOP("wait for its end, or interrupt it")},
        {FailureKind::ServerUnreachable, c_NetworkStatus, "server-unreachable",
         QT_TR_NOOP("{s} cannot be fetched ({d})"),
         QT_TR_NOOP("check the network connection and the server's address, then try again")},
        {FailureKind::ServerRefusal, c_NetworkStatus, "server-refusal",
         QT_TR_NOOP("the server does not give {s} ({d})"),
         QT_TR_NOOP("check the server's address, or try again when the server is in order")},
        {FailureKind::ServerSilent, c_NetworkStatus, "server-silent",
         QT_TR_NOOP("nothing more arrives from {s} ({d})"),
         QT_TR_NOOP("check the network connection, then try again")},
        {FailureKind::CertificateWrong, c_NetworkStatus, "server-untrusted",
         QT_TR_NOOP("the server {s} cannot be trusted ({d})"),
         QT_TR_NOOP(
             "name the authority that its operator goes by with --ca-file, or tell the operator")},
        {FailureKind::ProxyUnreachable, c_NetworkStatus, "proxy-unreachable",
         QT_TR_NOOP("{s} cannot be fetched ({d})"),
         QT_TR_NOOP("check --proxy and the variables of the environment that name a proxy, "
                    "then try again")},
        {FailureKind::OfflineUnknown, c_NetworkStatus, "offline-unknown",
         QT_TR_NOOP("nothing is kept about {s} to go on with offline ({d})"),
         QT_TR_NOOP("run \"update\" once while its server answers")},
        {FailureKind::ContentInvalid, c_NetworkStatus, "content-invalid",
         QT_TR_NOOP("what the server gives as {s} is not usable ({d})"),
         QT_TR_NOOP("check the server's address, or try again when the server is in order")},
        {FailureKind::SignatureMissing, c_DistrustStatus, "signature-missing",
         QT_TR_NOOP("{s} is not signed ({d})"),
         QT_TR_NOOP("try another network, or ask who publishes the game; without a signature "
                    "nobody vouches for it")},
        {FailureKind::SignatureWrong, c_DistrustStatus, "signature-wrong",
         QT_TR_NOOP("{s} is not what its publisher has signed ({d})"),
         QT_TR_NOOP(
             "try another network, or tell who publishes the game: somebody has changed it")},
        {FailureKind::KeyWrong, c_DistrustStatus, "key-wrong",
         QT_TR_NOOP("{s} is signed by somebody else ({d})"),
         QT_TR_NOOP(
             "compare the key of --trust-key with the one that the publisher has made known")},
        {FailureKind::GameWrong, c_DistrustStatus, "game-wrong",
         QT_TR_NOOP("{s} is signed as something else ({d})"),
         QT_TR_NOOP("check the server's address, or tell who publishes the game")},
        {FailureKind::RolledBack, c_DistrustStatus, "rolled-back",
         QT_TR_NOOP("{s} is older than what was seen before ({d})"),
         QT_TR_NOOP("try another network, or ask the publisher to sign anew what is in force")},
        {FailureKind::SignatureExpired, c_DistrustStatus, "signature-expired",
         QT_TR_NOOP("{s} is not valid any more ({d})"),
         QT_TR_NOOP("check this computer's clock, try another network, or ask the publisher to "
                    "sign anew")},
        {FailureKind::ManifestDiffers, c_DistrustStatus, "manifest-differs",
         QT_TR_NOOP("{s} is not the manifest of the current build ({d})"),
         QT_TR_NOOP("try again, or tell who publishes the game")},
        {FailureKind::GameUnverified, c_DistrustStatus, "game-unverified",
         QT_TR_NOOP("the game in {s} is not known to be what its publisher has signed"),
         QT_TR_NOOP("run \"verify\", or \"repair\" when that finds a difference")},
        {FailureKind::BuildEmpty, 1, "build-empty",
         QT_TR_NOOP("the build {s} holds no files for this platform"),
         QT_TR_NOOP("ask who publishes it")},
        {FailureKind::FilesUnreachable, c_NetworkStatus, "files-unreachable", "{s} ({d})",
         QT_TR_NOOP("check the network connection and run \"update\"; everything else is in "
                    "place and kept")},
        {FailureKind::FilesGivenUp, 4, "files-given-up", "{s} ({d})",
         QT_TR_NOOP("run \"update\" again; everything else is in place and kept")},
        {FailureKind::DiskFull, 6, "disk-full", QT_TR_NOOP("the volume of {s} is too full ({d})"),
         QT_TR_NOOP("free some space, then try again; what has arrived is kept")},
        {FailureKind::InstalledElsewhere, 7, "installed-elsewhere",
         QT_TR_NOOP("the game is already installed in {s}"),
         QT_TR_NOOP("update it there, or confirm (--yes) that it shall be installed anew")},
        {FailureKind::FolderMissing, 7, "folder-missing",
         QT_TR_NOOP("the installation folder {s} does not exist"),
         QT_TR_NOOP("connect its drive, or run \"install\" with the folder that it was moved to")},
        {FailureKind::FolderIsFile, 7, "folder-is-file", QT_TR_NOOP("{s} is a file, not a folder"),
         QT_TR_NOOP("choose another folder")},
        {FailureKind::FolderForbidden, 7, "folder-forbidden",
         QT_TR_NOOP("{s} is no folder for a game ({d})"), QT_TR_NOOP("choose a folder of its own")},
        {FailureKind::FolderForeign, 7, "folder-foreign",
         QT_TR_NOOP("the folder {s} holds other files"),
         QT_TR_NOOP("choose an empty folder, or confirm (--yes) that the game shall go there")},
        {FailureKind::FolderUnwritable, 7, "folder-unwritable",
         QT_TR_NOOP("the folder {s} cannot be written ({d})"),
         QT_TR_NOOP("change its permissions or choose another folder")},
        {FailureKind::FolderBlocksFile, 7, "folder-blocks-file",
         QT_TR_NOOP("a folder stands where the file {s} belongs"),
         QT_TR_NOOP("move that folder away, then try again")},
        {FailureKind::FileUnwritable, 7, "file-unwritable",
         QT_TR_NOOP("the file {s} cannot be written ({d})"),
         QT_TR_NOOP("remove what stands in its way or change the permissions, then try again")},
        {FailureKind::LinkLeadsOut, 7, "link-leads-out",
         QT_TR_NOOP("the symbolic link {s} is not followed, to {d}"),
         QT_TR_NOOP("connect the disk that it leads to, or put a link of your own, a folder or "
                    "a file in its place; then run \"repair\"; everything else is in place")},
        {FailureKind::SettingsUnreadable, 7, "settings-unreadable",
         QT_TR_NOOP("the settings file {s} cannot be read ({d})"),
         QT_TR_NOOP("correct it or its permissions, or choose another file")},
        {FailureKind::SettingsUnwritable, 7, "settings-unwritable",
         QT_TR_NOOP("the settings file {s} cannot be written ({d})"),
         QT_TR_NOOP("change its permissions or choose another file")},
        {FailureKind::FolderLocked, 8, "folder-locked",
         QT_TR_NOOP("another program works in the folder {s} ({d})"),
         QT_TR_NOOP("wait for it to end, then try again")},
        {FailureKind::GameRunning, 8, "game-running", QT_TR_NOOP("the game in {s} is running"),
         QT_TR_NOOP("quit it, then try again")},
        {FailureKind::ExecutableUnknown, 1, "executable-unknown",
         QT_TR_NOOP("the build {s} names no program to start"), QT_TR_NOOP("ask who publishes it")},
        {FailureKind::ExecutableMissing, 4, "executable-missing",
         QT_TR_NOOP("the game cannot be started: {s} is missing"), QT_TR_NOOP("run \"repair\"")},
        {FailureKind::ExecutableUnusable, 7, "executable-unusable",
         QT_TR_NOOP("the game cannot be started: {s} is no program that you may run ({d})"),
         QT_TR_NOOP("change its permissions, run \"repair\", or name what runs it with --wrapper")},
        {FailureKind::WrapperUnusable, 7, "wrapper-unusable",
         QT_TR_NOOP("the wrapper {s} cannot be started ({d})"),
         QT_TR_NOOP("install it, or name another one with --wrapper")},
        {FailureKind::GameFailed, 1, "game-failed",
         QT_TR_NOOP("the game has ended with an error ({d}), its output is in {s}"),
         QT_TR_NOOP("look there for the cause, or run \"verify\"")},
        {FailureKind::FilesNotRemoved, 7, "files-not-removed",
         QT_TR_NOOP("the game is uninstalled, but files remain in {s}: {d}"),
         QT_TR_NOOP("remove them by hand")},
        {FailureKind::UpdateAvailable, 3, "update-available",
         QT_TR_NOOP("an update to build {d} fetches {s}"), QT_TR_NOOP("run \"update\"")},
        {FailureKind::FilesWrong, 4, "files-wrong",
         QT_TR_NOOP("the game differs from build {d} in {s}"), QT_TR_NOOP("run \"repair\"")},
        {FailureKind::MirrorsWrong, c_NetworkStatus, "mirrors-wrong",
         QT_TR_NOOP("{s} servers are not in order ({d})"), QT_TR_NOOP("tell who runs them")},
        {FailureKind::NothingRunning, 1, "nothing-running",
         QT_TR_NOOP("no download is under way with the settings {s}"),
         QT_TR_NOOP("start one first")},
        {FailureKind::RunLost, 1, "run-lost",
         QT_TR_NOOP("the program that downloads into {s} has ended without a word"),
         QT_TR_NOOP("\"update\" goes on with the download")},
        {FailureKind::OptionUnknown, 2, "option-unknown", QT_TR_NOOP("there is no setting \"{s}\""),
         "{d}"},
        {FailureKind::OptionInvalid, 2, "option-invalid",
         QT_TR_NOOP("the setting \"{s}\" is not usable: {d}"),
         QT_TR_NOOP("\"varnholt-host --help\" tells what it can be")},
        {FailureKind::ConfirmationMissing, 2, "confirmation-missing",
         QT_TR_NOOP("the files in {s} are deleted only when that is confirmed"),
         QT_TR_NOOP("add --yes")},
        {FailureKind::Interrupted, 130, "interrupted", QT_TR_NOOP("interrupted"),
         QT_TR_NOOP("give the same command again to go on; what has arrived is kept")},
    };
};

FailureRow const& RowOf(FailureKind p_Kind)
{
    auto const row =
        std::find_if(std::begin(FailureTable::c_Rows), std::end(FailureTable::c_Rows),
                     [p_Kind](FailureRow const& p_Row) { return p_Row.Kind == p_Kind; });
    return row == std::end(FailureTable::c_Rows) ? FailureTable::c_Rows[0] : *row;
}

QString Fill(char const* p_Template, Failure const& p_Failure)
{
    return FillTemplate(FailureTable::tr(p_Template), p_Failure.Subject,
                        p_Failure.Detail.isEmpty() ? FailureTable::tr("cause unknown")
                                                   : p_Failure.Detail);
}

} // namespace

QString Failure::Identifier() const
{
    return QString::fromLatin1(RowOf(Kind).Identifier);
}

int Failure::ExitStatus() const
{
    return RowOf(Kind).ExitStatus;
}

QString Failure::Sentence() const
{
    return Fill(RowOf(Kind).Sentence, *this);
}

QString Failure::Remedy() const
{
    return Fill(RowOf(Kind).Remedy, *this);
}

bool Failure::IsNetwork() const
{
    return ExitStatus() == c_NetworkStatus;
}

QVector<FailureKind> Failure::Kinds()
{
    QVector<FailureKind> kinds;
    for (FailureRow const& row : FailureTable::c_Rows)
        kinds.append(row.Kind);
    return kinds;
}

FailureKind Failure::Named(QString const& p_Identifier)
{
    auto const row = std::find_if(
        std::begin(FailureTable::c_Rows), std::end(FailureTable::c_Rows),
        [&](FailureRow const& p_Row) { return p_Identifier == QLatin1String(p_Row.Identifier); });
    return row == std::end(FailureTable::c_Rows) ? FailureKind::Other : row->Kind;
}

} // namespace Varnholt::Host
