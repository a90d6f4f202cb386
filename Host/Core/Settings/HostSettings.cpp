#include "Host/Core/Settings/HostSettings.hpp"

#include <QDir>
#include <QMutexLocker>

namespace Varnholt::Host {

HostSettings::HostSettings(QString const& p_File)
    : Path(QDir::cleanPath(QDir::current().absoluteFilePath(p_File)))
    , Unreadable(SettingsFile::Read(Path).Problem)
{
    if (!Unreadable)
        Values = SettingsFile::Parse(Path);
}

HostSettings::~HostSettings()
{
    QMutexLocker const lock(&StoreMutex);
    Write();
}

QVariant HostSettings::Value(QString const& p_Key, QVariant const& p_Default) const
{
    QMutexLocker const lock(&StoreMutex);
    return Values.value(p_Key, p_Default);
}

void HostSettings::ReadAgain()
{
    QMutexLocker const lock(&StoreMutex);
    if (SettingsFile::Read(Path).Problem)
        return;
    Values = SettingsFile::Parse(Path);
    SettingsFile::Apply(Values, Unwritten);
}

void HostSettings::SetValue(QString const& p_Key, QVariant const& p_Value)
{
    QMutexLocker const lock(&StoreMutex);
    if (!Unwritten.contains(p_Key) && Values.contains(p_Key) && Values.value(p_Key) == p_Value)
        return;
    Values[p_Key] = Unwritten[p_Key] = p_Value;
    // At once: a mark that is set before a step must be on the disk if the step is killed.
    Write();
}

SettingsFile::Values HostSettings::All() const
{
    QMutexLocker const lock(&StoreMutex);
    return Values;
}

void HostSettings::Remove(QString const& p_Key)
{
    QMutexLocker const lock(&StoreMutex);
    if (Values.remove(p_Key) == 0 && !Unwritten.contains(p_Key))
        return;
    Unwritten[p_Key] = QVariant();
    Write();
}

std::optional<Failure> HostSettings::WriteRefusal() const
{
    QMutexLocker const lock(&StoreMutex);
    auto const problem = SettingsWriter(Path).Problem();
    return problem && problem->Kind == FailureKind::DiskFull ? std::nullopt : problem;
}

std::optional<Failure> HostSettings::Save()
{
    QMutexLocker const lock(&StoreMutex);
    return Write();
}

/// \return why it failed; it is tried again with the next value
std::optional<Failure> HostSettings::Write()
{
    if (Unwritten.isEmpty())
        return std::nullopt;
    SettingsWriter writer(Path);
    auto failure = writer.Write(Unwritten);
    if (!failure) {
        Values = writer.Written();
        Unwritten.clear();
    }
    return failure;
}

} // namespace Varnholt::Host
