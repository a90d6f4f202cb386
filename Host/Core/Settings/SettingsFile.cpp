#include "Host/Core/Settings/SettingsFile.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnholt::Host::SettingsFile {

namespace {

bool IsOrdinary(int p_File)
{
    struct stat status = {};
    return ::fstat(p_File, &status) == 0 && S_ISREG(status.st_mode);
}

bool IsLineInOrder(QByteArray const& p_Line)
{
    QByteArray const line = p_Line.trimmed();
    if (line.startsWith('['))
        return line.contains(']');
    return line.isEmpty() || line.startsWith(';') || line.startsWith('#') || line.contains('=');
}

/// \return its number, from 1; 0 when there is none
int FirstLineInDisorder(QByteArray const& p_Bytes)
{
    int number = 0;
    bool isContinued = false;
    for (QByteArray const& line : p_Bytes.split('\n')) {
        ++number;
        // A power cut may leave zeros.
        if (line.contains('\0') || (!isContinued && !IsLineInOrder(line)))
            return number;
        isContinued = line.trimmed().endsWith('\\');
    }
    return 0;
}

Content Unreadable(QString const& p_File, QString const& p_Cause)
{
    return {{}, Failure{FailureKind::SettingsUnreadable, p_File, p_Cause}};
}

} // namespace

Content Read(QString const& p_File)
{
    int const handle =
        ::open(QFile::encodeName(p_File).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (handle < 0 && (errno == ENOENT || errno == ENOTDIR))
        return {};
    if (handle < 0)
        return Unreadable(p_File, qt_error_string(errno));
    if (!IsOrdinary(handle)) {
        ::close(handle);
        return Unreadable(p_File, QCoreApplication::translate("Varnholt::Host::SettingsFile",
                                                              "it is no ordinary file"));
    }
    QFile file;
    file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    QByteArray const bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Unreadable(p_File, file.errorString());
    if (int const line = FirstLineInDisorder(bytes))
        return Unreadable(p_File, QCoreApplication::translate("Varnholt::Host::SettingsFile",
                                                              "line %1 is no setting")
                                      .arg(line));
    return {bytes, {}};
}

Values Parse(QString const& p_File)
{
    QSettings reader(p_File, QSettings::IniFormat);
    reader.setIniCodec("UTF-8");
    Values values;
    for (QString const& key : reader.allKeys())
        values[key] = reader.value(key);
    return values;
}

void Apply(Values& p_Values, Values const& p_Changes)
{
    for (auto row = p_Changes.constBegin(); row != p_Changes.constEnd(); ++row)
        if (row.value().isValid())
            p_Values[row.key()] = row.value();
        else
            p_Values.remove(row.key());
}

QString Canonical(QString const& p_File)
{
    QString const path = QDir::cleanPath(QDir::current().absoluteFilePath(p_File));
    QFileInfo const file(path);
    QString canonical = file.canonicalFilePath();
    if (!canonical.isEmpty() || file.isRoot())
        return canonical;
    return QDir::cleanPath(Canonical(file.path()) + QLatin1Char('/') + file.fileName());
}

} // namespace Varnholt::Host::SettingsFile
