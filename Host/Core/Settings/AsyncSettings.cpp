#include "Host/Core/Settings/AsyncSettings.hpp"

#include "Host/Core/Settings/SettingsWriter.hpp"

namespace Varnholt::Host {

AsyncSettings::AsyncSettings(QString p_File, QObject* p_Parent)
    : QObject(p_Parent)
    , File(std::move(p_File))
{
    Thread.setMaxThreadCount(1);
}

void AsyncSettings::Read()
{
    Thread.start([this] {
        auto const problem = SettingsFile::Read(File).Problem;
        auto const values = problem ? SettingsFile::Values() : SettingsFile::Parse(File);
        QMetaObject::invokeMethod(
            this, [this, values, problem] { Q_EMIT WasRead(values, problem); },
            Qt::QueuedConnection);
    });
}

void AsyncSettings::Write(SettingsFile::Values const& p_Changes)
{
    Thread.start([this, p_Changes] {
        auto const failure = SettingsWriter(File).Write(p_Changes);
        QMetaObject::invokeMethod(
            this, [this, failure] { Q_EMIT Written(failure); }, Qt::QueuedConnection);
    });
}

} // namespace Varnholt::Host
