#include "Host/Core/Failures/Notice.hpp"

#include "Host/Core/Failures/TextTemplate.hpp"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace Varnholt::Host {

namespace {

using Level = Notice::Level;

struct NoticeRow {
    NoticeKind Kind;
    Level Severity;
    char const* Identifier;
    char const* Sentence; ///< {s} is the subject, {d} the detail
    char const* Remedy;
};

struct NoticeTable {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::Notice)

public:
    static constexpr NoticeRow c_Rows[] = {
        {NoticeKind::ModuleMessage, Level::Warning, "module-message", "{s}", ""},
        {NoticeKind::MirrorsUnknown, Level::Warning, "mirrors-unknown",
         QT_TR_NOOP("{s}; the files come from the default server"), ""},
        {NoticeKind::ServersDoneWithout, Level::Warning, "servers-done-without",
         QT_TR_NOOP("{s}; going on with what is known of build {d}"), ""},
        {NoticeKind::LocaleLeftOut, Level::Warning, "locale-left-out",
         QT_TR_NOOP("The build does not offer the language {s}; its "
                    "files are left out until another one is chosen"),
         ""},
        {NoticeKind::RealmListKept, Level::Warning, "realm-list-kept",
         QT_TR_NOOP("{s}; the game keeps the realm list that it has"), ""},
        {NoticeKind::CopiesNotKept, Level::Warning, "copies-not-kept",
         QT_TR_NOOP("What starts the game without a server cannot be kept in {s}"), ""},
        {NoticeKind::FolderNotLocked, Level::Warning, "folder-not-locked",
         QT_TR_NOOP("The folder {s} cannot be locked ({d})"),
         QT_TR_NOOP("let no other program work in it at the same time")},
        {NoticeKind::GameFoundAgain, Level::Information, "game-found-again",
         QT_TR_NOOP("The game was found again in {s}; it was in {d} before"), ""},
        {NoticeKind::GameIncomplete, Level::Warning, "game-incomplete",
         QT_TR_NOOP("The game is not complete"), QT_TR_NOOP("run \"update\" if it does not work")},
        {NoticeKind::OutputNotKept, Level::Warning, "output-not-kept",
         QT_TR_NOOP("The output of the game is not kept: {s} cannot be written ({d})"), ""},
        {NoticeKind::GameRunningAlready, Level::Warning, "game-running-already",
         QT_TR_NOOP("The game was running already; the new one does not log in by itself"), ""},
        {NoticeKind::LoginNotPrepared, Level::Warning, "login-not-prepared",
         QT_TR_NOOP("The game does not log in by itself: {s} {d}"), ""},
        {NoticeKind::LoginMisreadable, Level::Warning, "login-misreadable",
         QT_TRANSLATE_NOOP(
             "Varnholt::Host::Notice",
             "The account name or the password holds characters that the login screen may misread"),
         QT_TR_NOOP("log in by hand if it does")},
        {NoticeKind::GameGoesOn, Level::Information, "game-goes-on",
         QT_TR_NOOP("The game was started and goes on running"), ""},
        {NoticeKind::GameAwaited, Level::Information, "game-awaited",
         QT_TR_NOOP("{s} runs as process {d}; waiting for its end"), ""},
        {NoticeKind::PasswordMissing, Level::Warning, "password-missing",
         QT_TR_NOOP("No password was given; the game does not log in by itself"), ""},
        {NoticeKind::PasswordUnreadable, Level::Warning, "password-unreadable",
         QT_TR_NOOP("The remembered password cannot be read: {s}"), ""},
        {NoticeKind::PasswordNotRemembered, Level::Warning, "password-not-remembered",
         QT_TR_NOOP("The password is not remembered: {s}"), ""},
        {NoticeKind::PasswordNotForgotten, Level::Warning, "password-not-forgotten",
         QT_TR_NOOP("The password is not forgotten: {s}"), ""},
        {NoticeKind::NothingDeleted, Level::Information, "nothing-deleted",
         QT_TR_NOOP("Nothing was deleted"), ""},
        {NoticeKind::RateUnlimited, Level::Information, "rate-unlimited",
         QT_TR_NOOP("The download is no longer limited"), ""},
        {NoticeKind::RateLimited, Level::Information, "rate-limited",
         QT_TR_NOOP("The download is now limited to {s}/s"), ""},
        {NoticeKind::Stopping, Level::Information, "stopping", QT_TR_NOOP("Stopping"),
         QT_TR_NOOP("press Ctrl-C again to stop at once")},
    };
};

NoticeRow const& RowOf(NoticeKind p_Kind)
{
    auto const* const row =
        std::find_if(std::begin(NoticeTable::c_Rows), std::end(NoticeTable::c_Rows),
                     [p_Kind](NoticeRow const& p_Row) { return p_Row.Kind == p_Kind; });
    return row == std::end(NoticeTable::c_Rows) ? NoticeTable::c_Rows[0] : *row;
}

} // namespace

QString Notice::Identifier() const
{
    return QString::fromLatin1(RowOf(Kind).Identifier);
}

Notice::Level Notice::Severity() const
{
    return RowOf(Kind).Severity;
}

QString Notice::SeverityName() const
{
    return Severity() == Level::Warning ? QStringLiteral("warning") : QStringLiteral("information");
}

QString Notice::Text() const
{
    QString const remedy = Remedy();
    QString const sentence = FillTemplate(NoticeTable::tr(RowOf(Kind).Sentence), Subject, Detail);
    return (remedy.isEmpty() ? sentence : sentence + QStringLiteral("; ") + remedy) +
           QLatin1Char('.');
}

QString Notice::Remedy() const
{
    char const* const remedy = RowOf(Kind).Remedy;
    return *remedy == 0 ? QString() : NoticeTable::tr(remedy);
}

} // namespace Varnholt::Host
