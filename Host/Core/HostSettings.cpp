#include "Host/Core/HostSettings.hpp"

#include "Host/Core/DeadLock.hpp"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>
#include <QTemporaryFile>

namespace Varnholt::Host {

namespace {

/// The settings class creates missing folders itself, but only below existing ones it may enter.
QString Prepared(QString const& p_File)
{
    QDir().mkpath(QFileInfo(p_File).absolutePath());
    // The settings class would wait for half a minute.
    RemoveDeadLock(p_File + QStringLiteral(".lock"), false);
    return p_File;
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

/// \return false when there is no room for it; it is tried again with the next value
bool HostSettings::Write()
{
    if (Held.isEmpty())
        return true;
    if (!HasRoom())
        return false;
    for (auto row = Held.constBegin(); row != Held.constEnd(); ++row)
        if (row.value().isValid())
            Store.setValue(row.key(), row.value());
        else
            Store.remove(row.key());
    Held.clear();
    Store.sync();
    return true;
}

/// The store replaces its file by a new one, and takes no notice when a full disk has cut that
/// short: all that was recorded would be gone.
bool HostSettings::HasRoom() const
{
    constexpr qint64 c_New = 16'384; // a path and some words

    QTemporaryFile probe(Store.fileName() + QStringLiteral(".XXXXXX"));
    if (!probe.open())
        return true; // the folder's fault, which the store itself reports
    qint64 const size = QFileInfo(Store.fileName()).size() + c_New;
    return probe.write(QByteArray(static_cast<int>(size), ' ')) == size && probe.flush();
}

} // namespace Varnholt::Host
