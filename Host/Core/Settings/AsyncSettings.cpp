#include "Host/Core/Settings/AsyncSettings.hpp"

#include "Host/Core/Settings/SettingsWriter.hpp"

namespace Varnholt::Host {

AsyncSettings::AsyncSettings(QString p_File, QObject* p_Parent)
    : QObject(p_Parent)
    , File(std::move(p_File))
    , Worker(new QObject)
{
    Thread.setObjectName(QStringLiteral("settings"));
    Worker->moveToThread(&Thread);
    connect(&Thread, &QThread::finished, Worker, &QObject::deleteLater);
    Thread.start();
}

AsyncSettings::~AsyncSettings()
{
    QMetaObject::invokeMethod(Worker, [this] { Thread.quit(); }); // behind all the others
    Thread.wait();
}

template <typename Result>
void AsyncSettings::Meet(std::function<Result()> p_Work, std::function<void(Result)> p_Answer)
{
    QMetaObject::invokeMethod(
        Worker, [this, work = std::move(p_Work), answer = std::move(p_Answer)] {
            QMetaObject::invokeMethod(this, [answer, result = work()] { answer(result); });
        });
}

void AsyncSettings::Read()
{
    using Found = std::pair<SettingsFile::Values, std::optional<Failure>>;

    Meet<Found>(
        [file = File] {
            auto const problem = SettingsFile::Read(file).Problem;
            return Found(problem ? SettingsFile::Values() : SettingsFile::Parse(file), problem);
        },
        [this](Found const& p_Found) { Q_EMIT WasRead(p_Found.first, p_Found.second); });
}

void AsyncSettings::Write(SettingsFile::Values const& p_Changes)
{
    Meet<std::optional<Failure>>(
        [file = File, p_Changes] {
            SettingsWriter writer(file);
            return writer.Problem() ? writer.Problem() : writer.Write(p_Changes);
        },
        [this](std::optional<Failure> const& p_Failure) { Q_EMIT Written(p_Failure); });
}

} // namespace Varnholt::Host
