#include "Pages/Pieces.hpp"

#include "Pages/CompletionTable.hpp"
#include "Pages/Options.hpp"
#include "Pages/Troff.hpp"

#include <QRegularExpression>

#include <stdexcept>

namespace Varnholt::Pages {

using namespace Troff;

namespace {

QString Title(CLI::Option const& p_Option)
{
    QStringList names;
    for (QString const& name : Names(p_Option))
        names += Bold(name);
    QString const value = ValueName(p_Option);
    return names.join(QStringLiteral(", ")) +
           (value.isEmpty() ? QString() : QLatin1Char(' ') + Italic(value));
}

/// Names the values too, unless the help does.
QString Help(CLI::App const& p_Program, CLI::Option const& p_Option)
{
    QString const help = Text(p_Option.get_description());
    QString text = Sentence(help);
    QStringList const choices = Choices(p_Program, p_Option);
    for (QString const& choice : choices)
        if (!help.contains(choice)) {
            text += Sentence(QStringLiteral("One of: ") + choices.join(QStringLiteral(", ")));
            break;
        }
    if (QString const value = Text(p_Option.get_default_str()); !value.isEmpty())
        text += Sentence(QStringLiteral("Default: ") + value);
    return text;
}

QString OptionItems(CLI::App const& p_Program, CLI::App const& p_App)
{
    QString items;
    for (CLI::Option const* const option : Options(p_App))
        if (&p_App == &p_Program || option != p_App.get_help_ptr())
            items += Item(Title(*option), Help(p_Program, *option));
    return items;
}

QString CommandItem(CLI::App const& p_Program, CLI::App const& p_Command)
{
    QString title = Bold(Text(p_Command.get_name()));
    for (CLI::Option const* const option : Options(p_Command))
        if (option->get_required())
            title += QLatin1Char(' ') + Title(*option);
    QString details;
    for (CLI::Option const* const argument : Arguments(p_Command)) {
        QString const name = Italic(Text(argument->get_name(true)));
        title +=
            (argument->get_required() ? QStringLiteral(" %1") : QStringLiteral(" [%1]")).arg(name);
        details += Item(name, Help(p_Program, *argument));
    }
    details += OptionItems(p_Program, p_Command);
    if (!details.isEmpty())
        details = QStringLiteral(".RS\n") + details + QStringLiteral(".RE\n");
    return Item(title, Sentence(Text(p_Command.get_description())) + details);
}

QString VariableItems(CLI::App const& p_App)
{
    QString items;
    for (CLI::Option const* const option : Options(p_App)) {
        if (option->get_envname().empty())
            continue;
        QString const name = Names(*option).last();
        items += Item(Bold(Text(option->get_envname())),
                      Sentence(ValueName(*option).isEmpty()
                                   ? QStringLiteral("When it is \"true\": as %1").arg(name)
                                   : QStringLiteral("As the value of %1").arg(name)));
    }
    return items;
}

/// What the help of a command ends with, from the word "Example" on: lines as they are.
QString Examples(CLI::App const& p_Command)
{
    QString const text = Text(p_Command.get_footer());
    QString lines;
    for (QString const& line :
         text.section(QStringLiteral("Example"), 1).trimmed().split(QLatin1Char('\n')).mid(1))
        lines += Plain(line) + QLatin1Char('\n');
    return Sentence(Text(p_Command.get_description())) + QStringLiteral(".PP\n.nf\n") + lines +
           QStringLiteral(".fi\n");
}

} // namespace

Pieces PiecesOf(CLI::App const& p_Program)
{
    QString commands;
    QString variables = VariableItems(p_Program);
    QStringList examples;
    for (CLI::App const* const command : Commands(p_Program)) {
        commands += CommandItem(p_Program, *command);
        variables += VariableItems(*command);
        examples += Examples(*command);
    }
    QString const name = Text(p_Program.get_name());
    QString const summary = Text(p_Program.get_description());
    QString const table = CompletionTable(p_Program).trimmed();
    return {
        {QStringLiteral("PROGRAM"), name},
        {QStringLiteral("VERSION"), Text(p_Program.version())},
        {QStringLiteral("FUNCTION"), QLatin1Char('_') + QString(name).replace('-', '_')},
        {QStringLiteral("TABLE"), table},
        {QStringLiteral("QUOTED_TABLE"),
         QString(table).replace('\\', QLatin1String("\\\\")).replace('\'', QLatin1String("\\'"))},
        {QStringLiteral("SUMMARY"), Plain(summary.left(1).toLower() + summary.mid(1))},
        {QStringLiteral("COMMANDS"), commands},
        {QStringLiteral("OPTIONS"), OptionItems(p_Program, p_Program)},
        {QStringLiteral("ENVIRONMENT"), variables},
        {QStringLiteral("EXAMPLES"), examples.join(QStringLiteral(".PP\n"))},
    };
}

QString Filled(QString const& p_Template, Pieces const& p_Pieces)
{
    static QRegularExpression const name(QStringLiteral("@([A-Z_]+)@"));

    QString page;
    int end = 0;
    for (auto names = name.globalMatch(p_Template); names.hasNext();) {
        auto const match = names.next();
        if (!p_Pieces.contains(match.captured(1)))
            throw std::runtime_error("there is no piece " + match.captured(1).toStdString());
        page += p_Template.midRef(end, match.capturedStart() - end) + p_Pieces[match.captured(1)];
        end = match.capturedEnd();
    }
    return page + p_Template.midRef(end);
}

} // namespace Varnholt::Pages
