#include "Host/Pages/ZshCompletion.hpp"

#include "Host/Pages/ShellText.hpp"

namespace Varnholt::Host::Pages {

namespace {

/// A backslash before each of the characters, and before backslashes.
QString Escaped(QString const& p_Text, QString const& p_Characters)
{
    QString escaped;
    for (QChar const character : p_Text) {
        if (character == QLatin1Char('\\') || p_Characters.contains(character))
            escaped += QLatin1Char('\\');
        escaped += character;
    }
    return escaped;
}

QString Action(Value const& p_Value)
{
    switch (p_Value.Kind) {
    case Value::Type::File:
        return QStringLiteral("_files");
    case Value::Type::Folder:
        return QStringLiteral("_files -/");
    case Value::Type::Choice: {
        QStringList words;
        for (QString const& choice : p_Value.Choices)
            words += Escaped(choice, QStringLiteral(" ':()\"$`"));
        return QLatin1Char('(') + words.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    case Value::Type::Text:
        break;
    }
    return QStringLiteral(" "); // anything: only its name is shown
}

/// How "_arguments" is told of an option, for each of its names.
QStringList Specifications(Option const& p_Option)
{
    QString const others =
        p_Option.Names.size() < 2
            ? QString()
            : QLatin1Char('(') + p_Option.Names.join(QLatin1Char(' ')) + QLatin1Char(')');
    QString const help =
        QLatin1Char('[') + Escaped(p_Option.Help, QStringLiteral("[]")) + QLatin1Char(']');
    QStringList specifications;
    for (QString const& name : p_Option.Names) {
        QString specification = others + name;
        if (p_Option.Takes.Name.isEmpty())
            specification += help;
        else // a long option has its value behind "=" or in the next word
            specification += QLatin1String(name.startsWith(QLatin1String("--")) ? "=" : "+") +
                             help + QLatin1Char(':') +
                             Escaped(p_Option.Takes.Name, QStringLiteral(":")) + QLatin1Char(':') +
                             Action(p_Option.Takes);
        specifications += ShellWord(specification);
    }
    return specifications;
}

QString Specification(Argument const& p_Argument)
{
    QString const action =
        p_Argument.After.isEmpty() ? Action(p_Argument.Takes) : QStringLiteral("->later");
    return ShellWord(
        QStringLiteral(":%1:%2").arg(Escaped(p_Argument.Name, QStringLiteral(":")), action));
}

QString Lines(QStringList const& p_Lines, int p_Indent)
{
    QString text;
    for (QString const& line : p_Lines)
        text += QString(p_Indent, QLatin1Char(' ')) + line + QLatin1Char('\n');
    return text;
}

/// Completes what depends on the word before it.
QStringList Later(Argument const& p_Argument)
{
    QStringList lines{QStringLiteral("case $state:$line[1] in")};
    for (auto const& [before, value] : p_Argument.After) {
        QString const name = ShellWord(p_Argument.Name);
        QString call = QStringLiteral("_message ") + name;
        if (value.Kind == Value::Type::Choice)
            call = QStringLiteral("compadd -- ") + ShellWords(value.Choices);
        else if (value.Kind != Value::Type::Text)
            call = Action(value);
        lines += QStringLiteral("    later:%1) %2 && result=0 ;;").arg(ShellWord(before), call);
    }
    return lines << QStringLiteral("esac");
}

QString CommandRow(Command const& p_Command)
{
    QStringList words;
    for (Option const& option : p_Command.Options)
        words += Specifications(option);
    for (Argument const& argument : p_Command.Arguments)
        words += Specification(argument);
    QStringList lines{QStringLiteral("_arguments -C $common %1 && result=0")
                          .arg(words.join(QLatin1Char(' ')))
                          .replace(QLatin1String("  "), QLatin1String(" "))};
    for (Argument const& argument : p_Command.Arguments)
        if (!argument.After.isEmpty())
            lines += Later(argument);
    return Lines({ShellWord(p_Command.Name) + QLatin1Char(')')}, 16) + Lines(lines, 20) +
           Lines({QStringLiteral(";;")}, 20);
}

} // namespace

QString ZshCompletion(ProgramModel const& p_Model)
{
    QStringList common;
    for (Option const& option : p_Model.Options)
        common += Specifications(option);
    QStringList commands;
    QString rows;
    for (Command const& command : p_Model.Commands) {
        commands += ShellWord(Escaped(command.Name, QStringLiteral(":")) + QLatin1Char(':') +
                              Escaped(command.Help, QString()));
        rows += CommandRow(command);
    }
    QString const function = FunctionName(p_Model);
    return QStringLiteral("#compdef %1\n"
                          "# Completes the command lines of %1 in zsh; made from its help.\n\n")
               .arg(p_Model.Name) +
           function +
           QStringLiteral("() {\n"
                          "    local curcontext=$curcontext state line result=1\n"
                          "    local -a common subcommands\n"
                          "    typeset -A opt_args\n"
                          "    common=(\n") +
           Lines(common, 8) + QStringLiteral("    )\n    subcommands=(\n") + Lines(commands, 8) +
           QStringLiteral("    )\n\n"
                          "    _arguments -C -A '-*' $common ':command:->command' "
                          "'*::argument:->argument' && result=0\n"
                          "    case $state in\n"
                          "        command) _describe -t commands command subcommands && result=0 "
                          ";;\n"
                          "        argument)\n"
                          "            case $words[1] in\n") +
           rows +
           QStringLiteral("            esac\n"
                          "            ;;\n"
                          "    esac\n"
                          "    return result\n"
                          "}\n\n") +
           function + QStringLiteral(" \"$@\"\n");
}

} // namespace Varnholt::Host::Pages
