#include "Host/Core/Settings/HostSettings.hpp"

#include "Host/Core/Folder/DeadLock.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QMutexLocker>

#include <cstdio>
#include <sys/stat.h>

namespace Varnholt::Host {

namespace {

using Values = QMap<QString, QVariant>;

QString const c_LockSuffix = QStringLiteral(".lock"); // the settings class's own

/// The settings class creates missing folders itself, but only below existing ones it may enter.
QString Prepared(QString const& p_File)
{
    QDir().mkpath(QFileInfo(p_File).absolutePath());
    // The settings class would wait for half a minute.
    RemoveDeadLock(p_File + c_LockSuffix, false);
    return p_File;
}

/// Where the file is that is perhaps named by a link.
QString TargetOf(QString const& p_File)
{
    QFileInfo const file(p_File);
    return file.isSymbolicLink() && file.exists() ? file.canonicalFilePath() : p_File;
}

void WriteAll(QString const& p_File, Values const& p_Values)
{
    if (p_Values.isEmpty()) { // of nothing the class makes no file
        QFile(p_File).open(QIODevice::WriteOnly);
        return;
    }
    // Without a codec: with one the class takes a character of two halves for two.
    QSettings writer(p_File, QSettings::IniFormat);
    for (auto row = p_Values.constBegin(); row != p_Values.constEnd(); ++row)
        writer.setValue(row.key(), row.value());
}

/// The old file's mode stays, unless it would show a password to others.
/// \return false when it does
bool SetMode(QString const& p_File, QString const& p_Target, Values const& p_Values)
{
    if (p_Values.contains(QLatin1String(HostSettings::c_PasswordKey)))
        return QFile::setPermissions(p_File, QFile::ReadOwner | QFile::WriteOwner);
    if (QFile::exists(p_Target))
        QFile::setPermissions(p_File, QFile::permissions(p_Target));
    return true;
}

bool Holds(QString const& p_File, Values const& p_Values)
{
    QSettings reader(p_File, QSettings::IniFormat);
    reader.setIniCodec("UTF-8");
    for (auto row = p_Values.constBegin(); row != p_Values.constEnd(); ++row)
        if (reader.value(row.key()) != row.value())
            return false;
    return reader.allKeys().size() == p_Values.size();
}

/// Writes the values within the folder, then puts their file in the place of the target.
bool Replace(QString const& p_Target, QString const& p_Folder, Values const& p_Values)
{
    QString const fresh = p_Folder + QStringLiteral("/fresh");
    QString const checked = p_Folder + QStringLiteral("/checked");
    WriteAll(fresh, p_Values);
    // Under its own name it would not be read again.
    return QFile::rename(fresh, checked) && Holds(checked, p_Values) &&
           SetMode(checked, p_Target, p_Values) &&
           std::rename(QFile::encodeName(checked).constData(),
                       QFile::encodeName(p_Target).constData()) == 0;
}

} // namespace

HostSettings::HostSettings(QString const& p_File)
    : Store(Prepared(p_File), QSettings::IniFormat)
{
    Store.setIniCodec("UTF-8");
}

HostSettings::~HostSettings()
{
    QMutexLocker const lock(&StoreMutex);
    Write();
}

QVariant HostSettings::Value(QString const& p_Key, QVariant const& p_Default) const
{
    QMutexLocker const lock(&StoreMutex);
    if (!Held.contains(p_Key))
        return Store.value(p_Key, p_Default);
    QVariant const held = Held.value(p_Key);
    return held.isValid() ? held : p_Default;
}

void HostSettings::SetValue(QString const& p_Key, QVariant const& p_Value)
{
    QMutexLocker const lock(&StoreMutex);
    if (!Held.contains(p_Key) && Store.contains(p_Key) && Store.value(p_Key) == p_Value)
        return;
    Held[p_Key] = p_Value;
    // At once: what is recorded before a step must be there when the step is killed.
    Write();
}

QStringList HostSettings::Keys() const
{
    QMutexLocker const lock(&StoreMutex);
    QStringList keys = Store.allKeys();
    for (auto row = Held.constBegin(); row != Held.constEnd(); ++row) {
        keys.removeAll(row.key());
        if (row.value().isValid())
            keys += row.key();
    }
    return keys;
}

void HostSettings::Remove(QString const& p_Key)
{
    QMutexLocker const lock(&StoreMutex);
    Held[p_Key] = QVariant();
    Write();
}

bool HostSettings::Flush()
{
    QMutexLocker const lock(&StoreMutex);
    bool const isWritten = Write();
    Store.sync();
    return isWritten && Store.status() == QSettings::NoError && Store.isWritable();
}

/// Not by the settings class alone: it replaces its file by a new one, and takes no notice when a
/// full disk has cut that short. All that was recorded would be gone.
/// \return false when it failed; it is tried again with the next value
bool HostSettings::Write()
{
    constexpr int c_MostMilliseconds = 5'000; // another program is at it for an instant

    if (Held.isEmpty())
        return true;
    QString const target = TargetOf(Store.fileName());
    QLockFile lock(Store.fileName() + c_LockSuffix);
    if (!lock.tryLock(c_MostMilliseconds))
        return false;
    Store.sync(); // what other programs have written
    if (Store.status() != QSettings::NoError)
        return false;
    // Nobody else enters the folder: the settings class makes its files readable at first.
    QString const folder = target + QStringLiteral(".varnholt-new");
    QFile::remove(folder);            // not what a link leads to
    QDir(folder).removeRecursively(); // by one that was killed
    bool const isWritten = ::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0 &&
                           Replace(target, folder, Merged());
    QDir(folder).removeRecursively();
    if (!isWritten)
        return false;
    Held.clear();
    Store.sync();
    return true;
}

HostSettings::Values HostSettings::Merged() const
{
    Values values;
    for (QString const& key : Store.allKeys())
        values[key] = Store.value(key);
    for (auto row = Held.constBegin(); row != Held.constEnd(); ++row)
        if (row.value().isValid())
            values[row.key()] = row.value();
        else
            values.remove(row.key());
    return values;
}

} // namespace Varnholt::Host
