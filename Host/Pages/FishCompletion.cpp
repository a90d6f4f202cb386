#include "Host/Pages/FishCompletion.hpp"

#include "Host/Pages/ShellText.hpp"

namespace Varnholt::Host::Pages {

namespace {

// %1 is the program's name, %2 the functions', %3 the options that a value follows.
char const* const c_Helpers = R"(# Completes the command lines of %1 in fish; made from its help.

function _%2_words --description 'Command and arguments before the cursor, without options'
    set -l tokens (commandline -opc)
    set -e tokens[1]
    set -l is_value 0
    for token in $tokens
        if test $is_value = 1
            set is_value 0
            continue
        end
        switch $token
            case %3
                set is_value 1
            case '-*'
            case '*'
                printf '%s\n' $token
        end
    end
end

function _%2_at --description 'NUMBER [WORD...]: so many words, and these first'
    set -l number $argv[1]
    set -e argv[1]
    set -l words (_%2_words)
    test (count $words) -eq $number; and _%2_behind $argv
end

function _%2_behind --description 'WORD...: the first words are these'
    set -l words (_%2_words)
    for word in $argv
        test "$words[1]" = $word; or return 1
        set -e words[1]
    end
end

complete -c %1 -f
)";

QString FishWord(QString const& p_Text)
{
    if (IsPlainWord(p_Text))
        return p_Text;
    QString text = p_Text;
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('\''), QLatin1String("\\'"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString FishWords(QStringList const& p_Texts)
{
    QStringList words;
    for (QString const& text : p_Texts)
        words += FishWord(text);
    return words.join(QLatin1Char(' '));
}

/// Options of "complete" for a value. A list is split into words once more when it is used.
QString Candidates(Value const& p_Value)
{
    switch (p_Value.Kind) {
    case Value::Type::File:
        return QStringLiteral(" -F");
    case Value::Type::Folder:
        return QStringLiteral(" -a '(__fish_complete_directories)'");
    case Value::Type::Choice:
        return QStringLiteral(" -a ") + FishWord(FishWords(p_Value.Choices));
    case Value::Type::Text:
        break;
    }
    return {};
}

QString Line(ProgramModel const& p_Model, QString const& p_Condition, QString const& p_Rest)
{
    QString const condition =
        p_Condition.isEmpty()
            ? QString()
            : QStringLiteral(" -n ") +
                  FishWord(QLatin1Char('_') + FunctionName(p_Model) + p_Condition);
    return QStringLiteral("complete -c ") + FishWord(p_Model.Name) + condition + p_Rest +
           QLatin1Char('\n');
}

QString Names(Option const& p_Option)
{
    QString names;
    for (QString const& name : p_Option.Names)
        names += name.startsWith(QLatin1String("--"))
                     ? QStringLiteral(" -l ") + FishWord(name.mid(2))
                     : QStringLiteral(" -s ") + FishWord(name.mid(1));
    if (!p_Option.Takes.Name.isEmpty())
        names += QLatin1String(p_Option.Takes.Kind == Value::Type::File ? " -r" : " -x") +
                 Candidates(p_Option.Takes);
    return names + QStringLiteral(" -d ") + FishWord(p_Option.Help);
}

QString ArgumentLines(ProgramModel const& p_Model, Command const& p_Command)
{
    QString lines;
    for (int i = 0; i < p_Command.Arguments.size(); ++i) {
        Argument const& argument = p_Command.Arguments[i];
        QString const help = QStringLiteral(" -d ") + FishWord(argument.Help);
        QString const place = QStringLiteral("_at %1 %2").arg(i + 1).arg(FishWord(p_Command.Name));
        for (auto const& [before, value] : argument.After)
            lines += Line(p_Model, place + QLatin1Char(' ') + FishWord(before),
                          Candidates(value) + help);
        if (argument.After.isEmpty())
            lines += Line(p_Model, place, Candidates(argument.Takes) + help);
    }
    return lines;
}

} // namespace

QString FishCompletion(ProgramModel const& p_Model)
{
    QVector<Option> const options = OptionsWithValue(p_Model);
    QString page = QString::fromLatin1(c_Helpers);
    page.replace(QLatin1String("%1"), FishWord(p_Model.Name));
    page.replace(QLatin1String("%2"), FunctionName(p_Model));
    page.replace(QLatin1String("%3"), FishWords(NamesOf(options)));
    for (Option const& option : p_Model.Options)
        page += Line(p_Model, {}, Names(option));
    for (Command const& command : p_Model.Commands)
        page += Line(p_Model, QStringLiteral("_at 0"),
                     QStringLiteral(" -a %1 -d %2")
                         .arg(FishWord(FishWord(command.Name)), FishWord(command.Help)));
    for (Command const& command : p_Model.Commands) {
        page += ArgumentLines(p_Model, command);
        for (Option const& option : command.Options)
            page +=
                Line(p_Model, QStringLiteral("_behind ") + FishWord(command.Name), Names(option));
    }
    return page;
}

} // namespace Varnholt::Host::Pages
