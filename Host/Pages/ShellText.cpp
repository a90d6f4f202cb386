#include "Host/Pages/ShellText.hpp"

#include <QRegularExpression>

namespace Varnholt::Host::Pages {

bool IsPlainWord(QString const& p_Text)
{
    static QRegularExpression const plain(QStringLiteral("^[A-Za-z0-9_./-]+$"));
    return plain.match(p_Text).hasMatch();
}

QString ShellWord(QString const& p_Text)
{
    if (IsPlainWord(p_Text))
        return p_Text;
    QString text = p_Text;
    text.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString ShellWords(QStringList const& p_Texts)
{
    QStringList words;
    for (QString const& text : p_Texts)
        words += ShellWord(text);
    return words.join(QLatin1Char(' '));
}

QStringList NamesOf(QVector<Option> const& p_Options)
{
    QStringList names;
    for (Option const& option : p_Options)
        names += option.Names;
    return names;
}

QVector<Option> OptionsWithValue(ProgramModel const& p_Model)
{
    QVector<Option> all = p_Model.Options;
    for (Command const& command : p_Model.Commands)
        all += command.Options;
    QVector<Option> options;
    for (Option const& option : all)
        if (!option.Takes.Name.isEmpty())
            options += option;
    return options;
}

QString FunctionName(ProgramModel const& p_Model)
{
    QString name = p_Model.Name;
    return QLatin1Char('_') + name.replace(QLatin1Char('-'), QLatin1Char('_'));
}

} // namespace Varnholt::Host::Pages
