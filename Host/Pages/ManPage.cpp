#include "Host/Pages/ManPage.hpp"

#include "Host/Core/Failures/ExitStatus.hpp"
#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/HostOptions.hpp"
#include "Host/Pages/Troff.hpp"

namespace Varnholt::Host::Pages {

using namespace Troff;

namespace {

QString Names(Option const& p_Option)
{
    QStringList names;
    for (QString const& name : p_Option.Names)
        names += Bold(name);
    QString const value = p_Option.Takes.Name;
    return names.join(QStringLiteral(", ")) +
           (value.isEmpty() ? QString() : QLatin1Char(' ') + Italic(value));
}

/// Names the values too, unless the help does.
QString Help(QString const& p_Help, Value const& p_Value)
{
    QString text = Sentence(p_Help);
    for (QString const& choice : p_Value.Choices)
        if (!p_Help.contains(choice))
            return text + Sentence(QStringLiteral("One of: ") +
                                   p_Value.Choices.join(QStringLiteral(", ")));
    return text;
}

QString Capital(char const* p_Text)
{
    QString const text = QString::fromUtf8(p_Text);
    return text.left(1).toUpper() + text.mid(1);
}

QString Synopsis(ProgramModel const& p_Model)
{
    return Section(QStringLiteral("SYNOPSIS")) +
           QStringLiteral("%1\n[%2]\\&...\n%3\n[%4]\\&...\n")
               .arg(Bold(p_Model.Name), Italic(QStringLiteral("OPTION")),
                    Italic(QStringLiteral("COMMAND")), Italic(QStringLiteral("ARGUMENT")));
}

QString Description(ProgramModel const& p_Model)
{
    return Section(QStringLiteral("DESCRIPTION")) + Bold(p_Model.Name) + QLatin1Char('\n') +
           Sentence(QStringLiteral("does without a launcher what a launcher does: it loads the "
                                   "module of a game, and has it installed, kept up to date and "
                                   "started")) +
           Paragraph() +
           Sentence(QStringLiteral("Options stand before the command or behind it. What neither "
                                   "the command line nor the environment gives is taken from the "
                                   "settings file, as far as it is kept there")) +
           Paragraph() +
           Sentence(QStringLiteral("Results go to standard output, progress, questions and "
                                   "failures to standard error"));
}

QString Commands(ProgramModel const& p_Model)
{
    QString page = Section(QStringLiteral("COMMANDS"));
    for (Command const& command : p_Model.Commands) {
        QString title = Bold(command.Name);
        for (Argument const& argument : command.Arguments)
            title += (argument.IsRequired ? QStringLiteral(" %1") : QStringLiteral(" [%1]"))
                         .arg(Italic(argument.Name));
        QString details;
        for (Argument const& argument : command.Arguments)
            details += Item(Italic(argument.Name), Help(argument.Help, argument.Takes));
        for (Option const& option : command.Options)
            details += Item(Names(option), Help(option.Help, option.Takes));
        page += Item(title, Sentence(command.Help) + Indented(details));
    }
    return page;
}

QString Options(ProgramModel const& p_Model)
{
    QString page = Section(QStringLiteral("OPTIONS"));
    for (Option const& option : p_Model.Options)
        page += Item(Names(option), Help(option.Help, option.Takes));
    return page;
}

QString Environment(ProgramModel const& p_Model)
{
    QString page = Section(QStringLiteral("ENVIRONMENT"));
    QVector<Option> options = p_Model.Options;
    for (Command const& command : p_Model.Commands)
        options += command.Options;
    for (Option const& option : options) {
        if (option.Variable.isEmpty())
            continue;
        QString const name = option.Names.last();
        page += Item(Bold(option.Variable),
                     Sentence(option.Takes.Name.isEmpty()
                                  ? QStringLiteral("When it is \"true\": as %1").arg(name)
                                  : QStringLiteral("As the value of %1").arg(name)));
    }
    return page +
           Item(Bold(QStringLiteral("VARNHOLT_CONTENT_PASSWORD")),
                Sentence(QStringLiteral("The password at the content server, instead of the one "
                                        "that the settings file keeps. It is no option: every "
                                        "user could read it there"))) +
           Item(Bold(QStringLiteral("VARNHOLT_CONTENT_BASE_URL")),
                Sentence(QStringLiteral("The module's own content server, when none is given as "
                                        "an option"))) +
           Item(Bold(QStringLiteral("NO_COLOR")),
                Sentence(QStringLiteral("Unless it is empty: no colours, when they are not asked "
                                        "for always")));
}

QString Files()
{
    return Section(QStringLiteral("FILES")) +
           Item(Bold(QLatin1String(HostOptions::c_SettingsName)),
                Sentence(QStringLiteral("The settings of host and module, in the user's "
                                        "configuration folder: $XDG_CONFIG_HOME, or ~/.config. "
                                        "With a password in it nobody else can read it"))) +
           Item(Bold(HostOptions::InstalledModuleFile()),
                Sentence(QStringLiteral("The module, as seen from the folder of the program")));
}

QString Signals()
{
    return Section(QStringLiteral("SIGNALS")) +
           Item(QStringList{Bold(QStringLiteral("SIGINT")), Bold(QStringLiteral("SIGTERM")),
                            Bold(QStringLiteral("SIGHUP"))}
                    .join(QStringLiteral(", ")),
                Sentence(QStringLiteral("Stop a download, and the program. What has arrived is "
                                        "kept; the same command goes on")) +
                    Sentence(QStringLiteral("The second of them does not wait for anything"))) +
           Item(Bold(QStringLiteral("SIGUSR1")),
                Sentence(QStringLiteral("Pauses a download, or goes on with a paused one")));
}

QString Statuses()
{
    QString page = Section(QStringLiteral("EXIT STATUS"));
    for (ExitStatus const& row : c_ExitStatuses)
        page += Item(Bold(QString::number(row.Status)), Sentence(Capital(row.Meaning)));
    return page;
}

QString Failures()
{
    QString const some = QStringLiteral("...");
    QString page = Section(QStringLiteral("FAILURES")) +
                   Sentence(QStringLiteral("A failure is told in one sentence: what failed, and "
                                           "what to do about it. With --json its identifier "
                                           "stands beside it. In brackets the exit status"));
    for (FailureKind const kind : Failure::Kinds()) {
        Failure const failure{kind, some, some};
        page += Item(
            QStringLiteral("%1 (%2)").arg(Bold(failure.Identifier())).arg(failure.ExitStatus()),
            Sentence(failure.Sentence() + QStringLiteral("; ") + failure.Remedy()));
    }
    return page;
}

QString Examples(ProgramModel const& p_Model)
{
    QString page = Section(QStringLiteral("EXAMPLES"));
    for (Command const& command : p_Model.Commands)
        page += Item(Bold(command.Example), Sentence(command.Help));
    return page;
}

} // namespace

QString ManPage(ProgramModel const& p_Model)
{
    return Title(p_Model.Name, p_Model.Version) + Section(QStringLiteral("NAME")) +
           Plain(p_Model.Name) + QStringLiteral(" \\- ") +
           Plain(p_Model.Help.left(1).toLower() + p_Model.Help.mid(1)) + QLatin1Char('\n') +
           Synopsis(p_Model) + Description(p_Model) + Commands(p_Model) + Options(p_Model) +
           Environment(p_Model) + Files() + Signals() + Statuses() + Failures() + Examples(p_Model);
}

} // namespace Varnholt::Host::Pages
