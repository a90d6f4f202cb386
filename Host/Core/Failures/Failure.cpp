#include "Host/Core/Failures/Failure.hpp"

#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

constexpr int c_NetworkStatus = 5;

struct Row {
    FailureKind Kind;
    int ExitStatus;
    char const* Identifier;
    char const* Sentence; ///< {s} is the subject, {d} the detail
    char const* Remedy;
};

constexpr Row c_Table[] = {
    {FailureKind::Other, 1, "other", "{s}: {d}", "try again"},
    {FailureKind::NotInstalled, 1, "not-installed", "{s} is not installed", "install it first"},
    {FailureKind::LocaleNotOffered, 2, "locale-not-offered",
     "the build does not offer the language \"{s}\"", "choose one of: {d}"},
    {FailureKind::ModuleMissing, 9, "module-missing", "there is no module file {s}",
     "check its name, or install the module again"},
    {FailureKind::ModuleForeign, 9, "module-foreign", "the file {s} is not a launcher module ({d})",
     "choose another module file"},
    {FailureKind::ModuleUnloadable, 9, "module-unloadable", "the module {s} cannot be loaded ({d})",
     "install what it lacks, or the module again"},
    {FailureKind::ModuleNotLoaded, 9, "module-not-loaded", "the module {s} is not loaded",
     "open the session first"},
    {FailureKind::SessionBusy, 8, "session-busy", "{s} is busy with another request",
     "wait for its end, or interrupt it"},
    {FailureKind::ServerUnreachable, c_NetworkStatus, "server-unreachable",
     "{s} cannot be fetched ({d})",
     "check the network connection and the server's address, then try again"},
    {FailureKind::ServerRefusal, c_NetworkStatus, "server-refusal",
     "the server does not give {s} ({d})",
     "check the server's address, or try again when the server is in order"},
    {FailureKind::ServerSilent, c_NetworkStatus, "server-silent",
     "nothing more arrives from {s} ({d})", "check the network connection, then try again"},
    {FailureKind::CertificateWrong, c_NetworkStatus, "server-untrusted",
     "the server {s} cannot be trusted ({d})",
     "name the authority that its operator goes by with --ca-file, or tell the operator"},
    {FailureKind::ProxyUnreachable, c_NetworkStatus, "proxy-unreachable",
     "{s} cannot be fetched ({d})",
     "check --proxy and the variables of the environment that name a proxy, then try again"},
    {FailureKind::OfflineUnknown, c_NetworkStatus, "offline-unknown",
     "nothing is kept about {s} to go on with offline ({d})",
     "run \"update\" once while its server answers"},
    {FailureKind::ContentInvalid, c_NetworkStatus, "content-invalid",
     "what the server gives as {s} is not usable ({d})",
     "check the server's address, or try again when the server is in order"},
    {FailureKind::BuildEmpty, 1, "build-empty", "the build {s} holds no files for this platform",
     "ask who publishes it"},
    {FailureKind::FilesUnreachable, c_NetworkStatus, "files-unreachable", "{s} ({d})",
     "check the network connection and run \"update\"; everything else is in place and kept"},
    {FailureKind::FilesGivenUp, 4, "files-given-up", "{s} ({d})",
     "run \"update\" again; everything else is in place and kept"},
    {FailureKind::DiskFull, 6, "disk-full", "the volume of {s} is too full ({d})",
     "free some space, then try again; what has arrived is kept"},
    {FailureKind::InstalledElsewhere, 7, "installed-elsewhere",
     "the game is already installed in {s}",
     "update it there, or confirm (--yes) that it shall be installed anew"},
    {FailureKind::FolderMissing, 7, "folder-missing", "the installation folder {s} does not exist",
     "connect its drive, or run \"install\" with the folder that it was moved to"},
    {FailureKind::FolderIsFile, 7, "folder-is-file", "{s} is a file, not a folder",
     "choose another folder"},
    {FailureKind::FolderForbidden, 7, "folder-forbidden", "{s} is no folder for a game ({d})",
     "choose a folder of its own"},
    {FailureKind::FolderForeign, 7, "folder-foreign", "the folder {s} holds other files",
     "choose an empty folder, or confirm (--yes) that the game shall go there"},
    {FailureKind::FolderUnwritable, 7, "folder-unwritable",
     "the folder {s} cannot be written ({d})", "change its permissions or choose another folder"},
    {FailureKind::FolderBlocksFile, 7, "folder-blocks-file",
     "a folder stands where the file {s} belongs", "move that folder away, then try again"},
    {FailureKind::FileUnwritable, 7, "file-unwritable", "the file {s} cannot be written ({d})",
     "remove what stands in its way or change the permissions, then try again"},
    {FailureKind::LinkLeadsOut, 7, "link-leads-out",
     "the symbolic link {s} is not followed, to {d}",
     "connect the disk that it leads to, or put a link of your own, a folder or a file in its "
     "place; then run \"repair\"; everything else is in place"},
    {FailureKind::SettingsUnreadable, 7, "settings-unreadable",
     "the settings file {s} cannot be read ({d})",
     "correct it or its permissions, or choose another file"},
    {FailureKind::SettingsUnwritable, 7, "settings-unwritable",
     "the settings file {s} cannot be written ({d})",
     "change its permissions or choose another file"},
    {FailureKind::FolderLocked, 8, "folder-locked", "another program works in the folder {s} ({d})",
     "wait for it to end, then try again"},
    {FailureKind::GameRunning, 8, "game-running", "the game in {s} is running",
     "quit it, then try again"},
    {FailureKind::ExecutableUnknown, 1, "executable-unknown",
     "the build {s} names no program to start", "ask who publishes it"},
    {FailureKind::ExecutableMissing, 4, "executable-missing",
     "the game cannot be started: {s} is missing", "run \"repair\""},
    {FailureKind::ExecutableUnusable, 7, "executable-unusable",
     "the game cannot be started: {s} is no program that you may run ({d})",
     "change its permissions, run \"repair\", or name what runs it with --wrapper"},
    {FailureKind::WrapperUnusable, 7, "wrapper-unusable", "the wrapper {s} cannot be started ({d})",
     "install it, or name another one with --wrapper"},
    {FailureKind::GameFailed, 1, "game-failed",
     "the game has ended with an error ({d}), its output is in {s}",
     "look there for the cause, or run \"verify\""},
    {FailureKind::FilesNotRemoved, 7, "files-not-removed",
     "the game is uninstalled, but files remain in {s}: {d}", "remove them by hand"},
    {FailureKind::UpdateAvailable, 3, "update-available", "an update to build {d} fetches {s}",
     "run \"update\""},
    {FailureKind::FilesWrong, 4, "files-wrong", "the game differs from build {d} in {s}",
     "run \"repair\""},
    {FailureKind::MirrorsWrong, c_NetworkStatus, "mirrors-wrong",
     "{s} servers are not in order ({d})", "tell who runs them"},
    {FailureKind::NothingRunning, 1, "nothing-running",
     "no download is under way with the settings {s}", "start one first"},
    {FailureKind::OptionUnknown, 2, "option-unknown", "there is no setting \"{s}\"", "{d}"},
    {FailureKind::OptionInvalid, 2, "option-invalid", "the setting \"{s}\" is not usable: {d}",
     "\"varnholt-host --help\" tells what it can be"},
    {FailureKind::ConfirmationMissing, 2, "confirmation-missing",
     "the files in {s} are deleted only when that is confirmed", "add --yes"},
    {FailureKind::Interrupted, 130, "interrupted", "interrupted",
     "give the same command again to go on; what has arrived is kept"},
};

Row const& RowOf(FailureKind p_Kind)
{
    auto const row = std::find_if(std::begin(c_Table), std::end(c_Table),
                                  [p_Kind](Row const& p_Row) { return p_Row.Kind == p_Kind; });
    return row == std::end(c_Table) ? c_Table[0] : *row;
}

/// Replaces both marks in one pass over the template, so that a path holding "{d}" stays itself.
QString Fill(char const* p_Template, Failure const& p_Failure)
{
    QString const text = QString::fromUtf8(p_Template);
    QString filled;
    for (int i = 0; i < text.size(); ++i) {
        QStringRef const mark = text.midRef(i, 3);
        if (mark == QLatin1String("{s}"))
            filled += p_Failure.Subject;
        else if (mark == QLatin1String("{d}"))
            filled +=
                p_Failure.Detail.isEmpty() ? QStringLiteral("cause unknown") : p_Failure.Detail;
        else {
            filled += text[i];
            continue;
        }
        i += 2;
    }
    return filled;
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
    for (Row const& row : c_Table)
        kinds.append(row.Kind);
    return kinds;
}

} // namespace Varnholt::Host
