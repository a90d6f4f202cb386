#include "Host/Core/HostSettings.hpp"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

namespace Varnholt::Host {

namespace {

/// The settings class creates missing folders itself, but only below existing ones it may enter.
QString Prepared(QString const& p_File)
{
    QDir().mkpath(QFileInfo(p_File).absolutePath());
    return p_File;
}

} // namespace

HostSettings::HostSettings(QString const& p_File)
    : Store(Prepared(p_File), QSettings::IniFormat)
{
    Store.setIniCodec("UTF-8");
}

QVariant HostSettings::Value(QString const& p_Key, QVariant const& p_Default) const
{
    QMutexLocker const lock(&StoreMutex);
    return Store.value(p_Key, p_Default);
}

void HostSettings::SetValue(QString const& p_Key, QVariant const& p_Value)
{
    QMutexLocker const lock(&StoreMutex);
    if (Store.contains(p_Key) && Store.value(p_Key) == p_Value)
        return;
    Store.setValue(p_Key, p_Value);
    // At once: what is recorded before a step must be there when the step is killed.
    Store.sync();
}

QStringList HostSettings::Keys() const
{
    QMutexLocker const lock(&StoreMutex);
    return Store.allKeys();
}

void HostSettings::Remove(QString const& p_Key)
{
    QMutexLocker const lock(&StoreMutex);
    Store.remove(p_Key);
    Store.sync();
}

bool HostSettings::Flush()
{
    QMutexLocker const lock(&StoreMutex);
    Store.sync();
    return Store.status() == QSettings::NoError && Store.isWritable();
}

} // namespace Varnholt::Host
