#include "Host/Core/Jobs/GameOutput.hpp"

#include "Host/Core/Settings/HostOptions.hpp"
#include "Launcher/Helper/Paths.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Varnholt::Host {

namespace {

bool LiesIn(QString const& p_Folder, QString const& p_File)
{
    using Launcher::Helper::Paths::WithSlash;

    QString const root = QFileInfo(p_Folder).canonicalFilePath();
    return !root.isEmpty() && WithSlash(QFileInfo(QFileInfo(p_File).path()).canonicalFilePath())
                                  .startsWith(WithSlash(root));
}

QString FileBeside(QString const& p_SettingsFile, QString const& p_AppId)
{
    QFileInfo const file(p_SettingsFile);
    return QStringLiteral("%1/%2.%3.log")
        .arg(file.absolutePath(), file.completeBaseName(), p_AppId);
}

constexpr char c_Former[] = ".1";

/// Without control characters, which a terminal would obey.
QString Printable(QString p_Line)
{
    constexpr int c_MostCharacters = 200;

    p_Line.remove(QLatin1Char('"'));
    QString text;
    for (QChar const character : p_Line.simplified())
        if (character.isPrint() || character.isSurrogate())
            text += character;
    text = text.trimmed();
    return text.size() <= c_MostCharacters
               ? text
               : QStringLiteral("…") + QStringRef(&text).right(c_MostCharacters);
}

} // namespace

GameOutput::GameOutput(QString const& p_SettingsFile, QString const& p_AppId,
                       QString const& p_Folder)
    : Path(FileBeside(p_SettingsFile, p_AppId))
{
    if (LiesIn(p_Folder, Path))
        Path = FileBeside(HostOptions::DefaultSettingsFile(), p_AppId);
}

GameOutput::~GameOutput()
{
    if (Handle >= 0)
        ::close(Handle);
}

QString GameOutput::Begin()
{
    constexpr unsigned c_OwnersMode = 0600;

    QByteArray const name = QFile::encodeName(Path);
    QDir().mkpath(QFileInfo(Path).path());
    // Renamed, not truncated: a game that still runs goes on writing to the old file.
    ::rename(name.constData(), (name + c_Former).constData());
    Handle =
        ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, c_OwnersMode);
    if (Handle >= 0)
        return {};
    QString why = qt_error_string(errno);
    Handle = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    return why;
}

QString GameOutput::LastLines() const
{
    constexpr int c_MostLines = 3;
    constexpr qint64 c_MostBytes = 4096;

    QFile file(Path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    file.seek(std::max<qint64>(0, file.size() - c_MostBytes));
    QStringList lines;
    for (QString const& line : QString::fromUtf8(file.read(c_MostBytes)).split(QLatin1Char('\n')))
        if (QString const text = Printable(line); !text.isEmpty())
            lines += text;
    return QStringList(lines.mid(std::max(0, lines.size() - c_MostLines)))
        .join(QStringLiteral(" / "));
}

void GameOutput::Forget() const
{
    QFile::remove(Path);
    QFile::remove(Path + QLatin1String(c_Former));
}

} // namespace Varnholt::Host
