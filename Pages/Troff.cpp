#include "Pages/Troff.hpp"

#include <QHash>

namespace Varnholt::Pages::Troff {

namespace {

/// Characters that the formatter would take for requests, or show as typographic ones.
QString Character(uint p_Code)
{
    constexpr uint c_LastAscii = 0x7e;
    constexpr int c_Digits = 4;
    static QHash<uint, QString> const names{
        {'\\', QStringLiteral("\\e")},   {'-', QStringLiteral("\\-")},
        {'\'', QStringLiteral("\\(aq")}, {'"', QStringLiteral("\\(dq")},
        {'`', QStringLiteral("\\(ga")},  {'^', QStringLiteral("\\(ha")},
        {'~', QStringLiteral("\\(ti")}};

    if (p_Code <= c_LastAscii)
        return names.value(p_Code, QString(QChar(p_Code)));
    QString const digits = QString::number(p_Code, 16).toUpper();
    return QStringLiteral("\\[u%1]").arg(digits.rightJustified(c_Digits, QLatin1Char('0')));
}

} // namespace

QString Plain(QString const& p_Text)
{
    QString escaped;
    for (uint const code : p_Text.toUcs4())
        escaped += Character(code);
    // A dot that begins a line begins a request, and one that ends it a wide space.
    if (escaped.startsWith(QLatin1Char('.')))
        escaped.prepend(QLatin1String("\\&"));
    return escaped.replace(QLatin1String("..."), QLatin1String("...\\&"));
}

QString Bold(QString const& p_Text)
{
    return QStringLiteral("\\fB") + Plain(p_Text) + QStringLiteral("\\fR");
}

QString Italic(QString const& p_Text)
{
    return QStringLiteral("\\fI") + Plain(p_Text) + QStringLiteral("\\fR");
}

QString Sentence(QString const& p_Text)
{
    constexpr int c_Width = 78;

    QString lines;
    int width = 0;
    for (QString const& text : p_Text.split(QLatin1Char(' '))) {
        QString const word = Plain(text);
        bool const fits = width + 1 + word.size() <= c_Width;
        if (width > 0)
            lines += QLatin1Char(fits ? ' ' : '\n');
        lines += word;
        width = (fits && width > 0 ? width + 1 : 0) + word.size();
    }
    return lines + QStringLiteral(".\n");
}

QString Item(QString const& p_Title, QString const& p_Lines)
{
    return QStringLiteral(".TP\n") + p_Title + QLatin1Char('\n') + p_Lines;
}

} // namespace Varnholt::Pages::Troff
