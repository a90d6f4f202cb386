#include "Tests/Faults/Belongings.hpp"

#include <algorithm>

namespace Varnholt::TestSupport {

namespace {

QString const c_Part = QStringLiteral(".part");

QList<QByteArray> Lines(QByteArray const& p_Text)
{
    QList<QByteArray> lines = p_Text.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

/// Lines that every update writes anew.
bool IsOfTheModule(QByteArray const& p_Line)
{
    return p_Line.contains("locale \"") || p_Line.contains("installLocale \"") ||
           p_Line.contains("realmlist \"");
}

} // namespace

QString const Belongings::c_Config = QStringLiteral("WTF/Config.wtf");
QStringList const Belongings::c_Lists{QStringLiteral("ToDownloadBase.db"),
                                      QStringLiteral("ToDownload.db")};

Belongings::Belongings(HostGame const& p_Game, QStringList const& p_NotKept)
    : Game(p_Game)
{
    for (SampleFile const& file : Game.Content.Files)
        Right[file.Path] = file.Bytes;
    for (QString const& file : Game.FilesOnDisk())
        if (!p_NotKept.contains(file))
            Before[file] = Game.Read(file);
}

QStringList Belongings::Lost() const
{
    QStringList lost;
    for (auto row = Before.constBegin(); row != Before.constEnd(); ++row)
        if (IsLost(row.key(), row.value()))
            lost += QStringLiteral("%1 was lost").arg(row.key());
    return lost;
}

bool Belongings::IsLost(QString const& p_File, QByteArray const& p_Before) const
{
    QByteArray const now = Game.Read(p_File);
    if (c_Lists.contains(p_File))
        return IsListLost(p_Before, now);
    if (p_File == c_Config)
        return IsConfigLost(p_Before, now);
    if (Right.contains(p_File)) // an old or damaged one makes way for what has arrived
        return p_Before == Right[p_File] && now != p_Before;
    QString const whole = p_File.chopped(p_File.endsWith(c_Part) ? c_Part.size() : 0);
    if (whole == p_File || !Right.contains(whole))
        return now != p_Before;
    bool const isRight = Right[whole].startsWith(p_Before);
    bool const isKept = now.size() >= p_Before.size() && Right[whole].startsWith(now);
    return isRight && !isKept && Game.Read(whole) != Right[whole];
}

bool Belongings::IsListLost(QByteArray const& p_Before, QByteArray const& p_Now) const
{
    auto const known = Lines(p_Before);
    for (QByteArray const& line : Lines(p_Now))
        if (!known.contains(line) && !Right.contains(QString::fromUtf8(line)))
            return true;
    // A file that is not there is found without a list, and who is marked as unfinished looks at
    // every file again.
    auto const left = Lines(p_Now);
    return !Game.IsMarkedUnfinished() &&
           std::any_of(known.begin(), known.end(), [&](QByteArray const& p_Line) {
               QString const file = QString::fromUtf8(p_Line);
               return Game.Has(file) && Game.Read(file) != Right.value(file) &&
                      !left.contains(p_Line);
           });
}

bool Belongings::IsConfigLost(QByteArray const& p_Before, QByteArray const& p_Now)
{
    auto const left = Lines(p_Now);
    auto const known = Lines(p_Before);
    return std::any_of(known.begin(), known.end(), [&](QByteArray const& p_Line) {
        return !IsOfTheModule(p_Line) && !left.contains(p_Line);
    });
}

QStringList Belongings::Strays() const
{
    QStringList strays;
    for (QString const& file : Game.FilesOnDisk())
        if (!Before.contains(file) && !Right.contains(file) && !c_Lists.contains(file) &&
            file != c_Config)
            strays += QStringLiteral("%1 was left behind").arg(file);
    return strays;
}

} // namespace Varnholt::TestSupport
