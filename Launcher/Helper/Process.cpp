#include "Launcher/Helper/Process.hpp"

#include <QProcess>
#include <QTextStream>

namespace Varnholt::Launcher::Helper::Process {

namespace {

QString Normalised(QString p_Line)
{
    return p_Line.remove(QLatin1Char('"'))
        .replace(QLatin1Char('\\'), QLatin1Char('/'))
        .toLower()
        .trimmed();
}

/// The launchers carry the game's folder in their command lines and are not the game.
bool IsLauncher(QString const& p_Line)
{
    return p_Line.contains(QLatin1String("QuorvelLauncher.exe"), Qt::CaseInsensitive) ||
           p_Line.contains(QLatin1String("TesmidLauncher.exe"), Qt::CaseInsensitive);
}

} // namespace

bool IsProcessRunningIn(QString p_Folder, QStringList p_Names, QString* p_MatchedLine)
{
    // A folder of nothing but blanks is searched for like any other.
    if (p_Folder.isEmpty())
        return false;

    constexpr int c_WaitMilliseconds = 1000;
    QProcess ps;
    ps.setReadChannel(QProcess::StandardOutput);
    ps.setProcessChannelMode(QProcess::MergedChannels);
    ps.start(QStringLiteral("ps"), {QStringLiteral("auxwwwe")}, QIODevice::ReadWrite);
    ps.waitForStarted(c_WaitMilliseconds);
    ps.waitForFinished(c_WaitMilliseconds);
    return IsProcessListed(QTextStream(&ps).readAll(), p_Folder, p_Names, p_MatchedLine);
}

bool IsProcessListed(QString const& p_ProcessList, QString const& p_Folder,
                     QStringList const& p_Names, QString* p_MatchedLine)
{
    constexpr int c_ShortestLine = 4;
    QString list = p_ProcessList;
    QTextStream lines(&list, QIODevice::ReadOnly);
    while (!lines.atEnd()) {
        QString const line = Normalised(lines.readLine());
        if (line.size() < c_ShortestLine || !line.contains(p_Folder, Qt::CaseInsensitive) ||
            IsLauncher(line))
            continue;
        for (QString const& name : p_Names) {
            if (!line.contains(name, Qt::CaseInsensitive))
                continue;
            if (p_MatchedLine != nullptr)
                *p_MatchedLine = line;
            return true;
        }
    }
    return false;
}

} // namespace Varnholt::Launcher::Helper::Process
