#include "Launcher/Helper/Process.hpp"

#include <QCoreApplication>
#include <QMutex>
#include <QMutexLocker>
#include <QPointer>
#include <QProcess>
#include <QTextStream>

#include <algorithm>

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

/// The first of the names that the line contains, null when it contains none.
QString const* NameIn(QString const& p_Line, QStringList const& p_Names)
{
    auto const name = std::find_if(p_Names.begin(), p_Names.end(), [&](QString const& p_Name) {
        return p_Line.contains(p_Name, Qt::CaseInsensitive);
    });
    return name == p_Names.end() ? nullptr : &*name;
}

/// Lets go of a program that does not end: it is deleted at its end by the main thread, which has
/// an event loop when the caller's has none. The module may be unloaded by then, so nothing but
/// Qt's own code may be bound to it.
void Abandon(QProcess* p_Process)
{
    QObject::connect(p_Process, SIGNAL(finished(int, QProcess::ExitStatus)), p_Process,
                     SLOT(deleteLater()));
    p_Process->closeReadChannel(QProcess::StandardOutput);
    p_Process->kill();
    if (QCoreApplication::instance() != nullptr)
        p_Process->moveToThread(QCoreApplication::instance()->thread());
}

/// What the system lists within two seconds; nothing while an earlier listing still hangs, since
/// each holds a process and descriptors, and hosts ask ten times a second.
QString ProcessList()
{
    constexpr int c_WaitMilliseconds = 1000;
    static QMutex s_Mutex;
    static QPointer<QProcess> s_Abandoned;

    QMutexLocker const lock(&s_Mutex);
    if (s_Abandoned)
        return {};
    auto* const ps = new QProcess;
    ps->setReadChannel(QProcess::StandardOutput);
    ps->setProcessChannelMode(QProcess::MergedChannels);
    // Texts of its own: a literal's are in the module, which the process may outlive.
    ps->start(QString::fromLatin1("ps"), {QString::fromLatin1("auxwwwe")}, QIODevice::ReadWrite);
    ps->waitForStarted(c_WaitMilliseconds);
    ps->waitForFinished(c_WaitMilliseconds);
    QString list = QTextStream(ps).readAll();
    if (ps->state() == QProcess::NotRunning) {
        delete ps;
    } else {
        s_Abandoned = ps;
        Abandon(ps);
    }
    return list;
}

} // namespace

bool IsProcessRunningIn(QString p_Folder, QStringList p_Names, QString* p_MatchedLine)
{
    // A folder of nothing but blanks is searched for like any other.
    if (p_Folder.isEmpty())
        return false;
    return IsProcessListed(ProcessList(), p_Folder, p_Names, p_MatchedLine);
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
        if (NameIn(line, p_Names) == nullptr)
            continue;
        if (p_MatchedLine != nullptr)
            *p_MatchedLine = line;
        return true;
    }
    return false;
}

QString NameAndId(QString const& p_MatchedLine, QStringList const& p_Names)
{
    QString const* const name = NameIn(p_MatchedLine, p_Names);
    if (name == nullptr)
        return {};
    bool isNumber = false;
    qlonglong const id = p_MatchedLine.section(QLatin1Char(' '), 1, 1, QString::SectionSkipEmpty)
                             .toLongLong(&isNumber);
    return isNumber ? *name + QLatin1Char(' ') + QString::number(id) : *name;
}

} // namespace Varnholt::Launcher::Helper::Process
