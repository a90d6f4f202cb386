#include "Host/Window/Pages/Remedy.hpp"

#include "Host/Window/Main/RunText.hpp"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

using Command = PageCommand;

struct RemedyRow {
    FailureKind Kind;
    std::vector<PageCommand> Commands;
    char const* Text = nullptr; ///< where the failure's own speaks of a terminal
};

struct RemedyTable {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::Remedy)

public:
    static std::vector<RemedyRow> const& Rows();
};

/// What is not here is tried again.
std::vector<RemedyRow> const& RemedyTable::Rows()
{
    static std::vector<RemedyRow> const s_Rows{
        {FailureKind::NotInstalled, {Command::Install}},
        {FailureKind::LocaleNotOffered, {Command::ChooseLanguage}},
        {FailureKind::ModuleMissing, {Command::TryAgain, Command::Settings}},
        {FailureKind::ModuleForeign, {Command::TryAgain, Command::Settings}},
        {FailureKind::CertificateWrong,
         {Command::Settings, Command::TryAgain},
         QT_TR_NOOP("name the authority that its operator goes by in the settings, or tell the "
                    "operator")},
        {FailureKind::ProxyUnreachable,
         {Command::TryAgain, Command::Settings},
         QT_TR_NOOP("check which proxy the settings or the system name, then try again")},
        {FailureKind::OfflineUnknown,
         {Command::TryAgain, Command::Settings},
         QT_TR_NOOP("go online once, and try again while its server answers")},
        {FailureKind::ServerRefusal, {Command::TryAgain, Command::Settings}},
        {FailureKind::ContentInvalid, {Command::TryAgain, Command::Settings}},
        {FailureKind::FilesUnreachable,
         {Command::TryAgain, Command::ShowFiles},
         QT_TR_NOOP("check the network connection and try again; everything else is in place "
                    "and kept")},
        {FailureKind::FilesGivenUp,
         {Command::TryAgain, Command::ShowFiles},
         QT_TR_NOOP("try again; everything else is in place and kept")},
        {FailureKind::DiskFull, {Command::TryAgain, Command::OpenFolder}},
        {FailureKind::InstalledElsewhere,
         {Command::Update, Command::ChooseFolder},
         QT_TR_NOOP("update it there, or agree that it shall be installed anew")},
        {FailureKind::FolderMissing,
         {Command::TryAgain, Command::ChooseFolder},
         QT_TR_NOOP("connect its drive, or choose the folder that it was moved to")},
        {FailureKind::FolderIsFile, {Command::ChooseFolder}},
        {FailureKind::FolderForbidden, {Command::ChooseFolder}},
        {FailureKind::FolderForeign,
         {Command::ChooseFolder},
         QT_TR_NOOP("choose an empty folder, or agree that the game shall go there")},
        {FailureKind::FolderUnwritable, {Command::ChooseFolder, Command::TryAgain}},
        {FailureKind::FolderBlocksFile, {Command::OpenFolder, Command::TryAgain}},
        {FailureKind::FileUnwritable, {Command::OpenFolder, Command::TryAgain}},
        {FailureKind::LinkLeadsOut,
         {Command::Repair, Command::OpenFolder},
         QT_TR_NOOP("connect the disk that it leads to, or put a link of your own, a folder or "
                    "a file in its place; then repair the game; everything else is in place")},
        {FailureKind::ExecutableMissing, {Command::Repair}, QT_TR_NOOP("repair the game")},
        {FailureKind::ExecutableUnusable,
         {Command::Repair, Command::Settings},
         QT_TR_NOOP("change its permissions, repair the game, or name what runs it in the "
                    "settings")},
        {FailureKind::WrapperUnusable,
         {Command::Settings},
         QT_TR_NOOP("install it, or name another one in the settings")},
        {FailureKind::GameFailed,
         {Command::ShowOutput, Command::Check},
         QT_TR_NOOP("look there for the cause, or check the game's files")},
        {FailureKind::KeyWrong,
         {Command::Settings, Command::TryAgain},
         QT_TR_NOOP("compare the key in the settings with the one that the publisher has made "
                    "known")},
        {FailureKind::GameUnverified,
         {Command::Check, Command::Repair},
         QT_TR_NOOP("check the game's files, and repair it when a difference is found")},
        {FailureKind::FilesNotRemoved, {Command::OpenFolder}},
        {FailureKind::UpdateAvailable, {Command::Update}, QT_TR_NOOP("update the game")},
        {FailureKind::FilesWrong,
         {Command::Repair, Command::ShowFiles},
         QT_TR_NOOP("repair the game")},
        {FailureKind::RunLost, {Command::Continue}, QT_TR_NOOP("an update goes on with it")},
        {FailureKind::OptionUnknown, {Command::Settings}},
        {FailureKind::OptionInvalid, {Command::Settings}, QT_TR_NOOP("correct it in the settings")},
        {FailureKind::ConfirmationMissing,
         {Command::Uninstall},
         QT_TR_NOOP("agree that they shall go")},
        {FailureKind::Interrupted,
         {Command::Continue},
         QT_TR_NOOP("continue when you like; what has arrived is kept")},
    };
    return s_Rows;
}

} // namespace

Remedy Remedy::Of(Failure const& p_Failure)
{
    auto const& rows = RemedyTable::Rows();
    auto const row = std::find_if(rows.begin(), rows.end(), [&](RemedyRow const& p_Row) {
        return p_Row.Kind == p_Failure.Kind;
    });
    bool const isOwn = row != rows.end() && row->Text != nullptr;
    Remedy remedy;
    remedy.Text = RunText::Capitalized(isOwn ? RemedyTable::tr(row->Text) : p_Failure.Remedy()) +
                  QLatin1Char('.');
    remedy.Commands =
        row == rows.end() ? std::vector<PageCommand>{Command::TryAgain} : row->Commands;
    return remedy;
}

QString Remedy::ButtonText(PageCommand p_Command)
{
    switch (p_Command) {
    case Command::TryAgain:
        return RemedyTable::tr("Try a&gain");
    case Command::Update:
        return RemedyTable::tr("&Get the update");
    case Command::Install:
        return RemedyTable::tr("I&nstall…");
    case Command::Continue:
        return RemedyTable::tr("G&o on");
    default:
        return CommandText(p_Command);
    }
}

} // namespace Varnholt::Host
