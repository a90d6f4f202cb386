#include "Host/Pages/BashCompletion.hpp"

#include "Host/Pages/ShellText.hpp"

namespace Varnholt::Host::Pages {

namespace {

// %1 is the function's name. Without what bash 3.2 does not know, and without bash-completion.
char const* const c_Helpers = R"bash(
# WORD [CANDIDATE...]: those that begin like the word.
%1_words() {
    local start=$1 candidate
    shift
    for candidate; do
        [[ $candidate != "$start"* ]] || COMPREPLY+=("$(printf %q "$candidate")")
    done
}

# -f WORD or -d WORD: files or folders.
%1_paths() {
    local path
    # Lets bash escape what it completes, and complete what stands in quotes; old ones cannot.
    compopt -o filenames -o default 2>/dev/null
    while IFS= read -r path; do
        COMPREPLY+=("$path")
    done < <(compgen "$1" -- "$2")
}
)bash";

// Bash takes "--option=value" for three words, and "http://host" too.
char const* const c_Start = R"bash(
%1() {
    local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command='' i
    local piece sign expects=''
    local -a arguments
    arguments=()
    COMPREPLY=()
    if [[ $word == = ]]; then
        word=''
    elif [[ $option == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    for ((i = 1; i < COMP_CWORD; ++i)); do
        piece=${COMP_WORDS[i]}
        sign=''
        while [[ ${COMP_WORDS[i + 1]-} =~ ^[:=]+$ ]]; do
            sign=${sign:-${COMP_WORDS[i + 1]}}
            i=$((i + 2))
        done
        if [[ -n $expects ]]; then
            expects=''
            continue
        fi
        case $piece in
            %2) [[ $sign == = ]] || expects=value ;;
            -*) ;;
            *)
                if [[ -z $command ]]; then
                    command=$piece
                else
                    arguments+=("$piece")
                fi
                ;;
        esac
    done
)bash";

QString Alternatives(QStringList const& p_Texts)
{
    QStringList words;
    for (QString const& text : p_Texts)
        words += ShellWord(text);
    return words.join(QStringLiteral(" | "));
}

QString Candidates(QString const& p_Function, Value const& p_Value)
{
    switch (p_Value.Kind) {
    case Value::Type::File:
        return p_Function + QStringLiteral("_paths -f \"$word\"");
    case Value::Type::Folder:
        return p_Function + QStringLiteral("_paths -d \"$word\"");
    case Value::Type::Choice:
        return p_Function + QStringLiteral("_words \"$word\" ") + ShellWords(p_Value.Choices);
    case Value::Type::Text:
        break;
    }
    return QStringLiteral(":");
}

QString Row(QString const& p_Pattern, QString const& p_Action, QString const& p_Indent)
{
    return p_Indent + p_Pattern + QStringLiteral(") ") + p_Action + QStringLiteral(" ;;\n");
}

QString Values(ProgramModel const& p_Model)
{
    QString const indent(8, QLatin1Char(' '));
    QString text = QStringLiteral("\n    case $option in\n");
    for (Option const& option : OptionsWithValue(p_Model))
        text += Row(Alternatives(option.Names),
                    Candidates(FunctionName(p_Model), option.Takes) + QStringLiteral("; return"),
                    indent);
    return text + QStringLiteral("    esac\n");
}

QString Options(ProgramModel const& p_Model)
{
    QString const words = FunctionName(p_Model) + QStringLiteral("_words \"$word\" ");
    QString text = QStringLiteral("\n    if [[ $word == -* ]]; then\n        ") + words +
                   ShellWords(NamesOf(p_Model.Options)) +
                   QStringLiteral("\n        case $command in\n");
    for (Command const& command : p_Model.Commands)
        if (!command.Options.isEmpty())
            text += Row(ShellWord(command.Name), words + ShellWords(NamesOf(command.Options)),
                        QString(12, QLatin1Char(' ')));
    return text + QStringLiteral("        esac\n        return\n    fi\n");
}

QString Arguments(ProgramModel const& p_Model)
{
    QString const function = FunctionName(p_Model);
    QString const indent(8, QLatin1Char(' '));
    QStringList names;
    for (Command const& command : p_Model.Commands)
        names += command.Name;
    QString text = QStringLiteral("\n    case $command:${#arguments[@]}:${arguments[0]-} in\n") +
                   Row(QStringLiteral(":0:"),
                       function + QStringLiteral("_words \"$word\" ") + ShellWords(names), indent);
    for (Command const& command : p_Model.Commands) {
        for (int i = 0; i < command.Arguments.size(); ++i) {
            Argument const& argument = command.Arguments[i];
            QString const place = QStringLiteral("%1:%2:").arg(ShellWord(command.Name)).arg(i);
            for (auto const& [before, value] : argument.After)
                text += Row(place + ShellWord(before), Candidates(function, value), indent);
            if (argument.After.isEmpty())
                text += Row(place + QLatin1Char('*'), Candidates(function, argument.Takes), indent);
        }
    }
    return text + QStringLiteral("    esac\n}\n");
}

} // namespace

QString BashCompletion(ProgramModel const& p_Model)
{
    QString const function = FunctionName(p_Model);
    QString start = QString::fromLatin1(c_Start);
    start.replace(QLatin1String("%1"), function);
    QVector<Option> const options = OptionsWithValue(p_Model);
    start.replace(QLatin1String("%2"), Alternatives(NamesOf(options)));
    QString helpers = QString::fromLatin1(c_Helpers);
    helpers.replace(QLatin1String("%1"), function);
    return QStringLiteral("# Completes the command lines of %1 in bash; made from its help.\n")
               .arg(p_Model.Name) +
           helpers + start + Values(p_Model) + Options(p_Model) + Arguments(p_Model) +
           QStringLiteral("\ncomplete -F %1 %2\n").arg(function, ShellWord(p_Model.Name));
}

} // namespace Varnholt::Host::Pages
