#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/SettingsFile.hpp"

#include <QObject>
#include <QString>
#include <QThread>

#include <functional>
#include <optional>

namespace Varnholt::Host {

/// A settings file for one who must not wait for it, as a window does not: requests return at once,
/// are met in their order on a thread of this object's own, and answered by signals on the thread
/// that this lives on. What a session has read of the file already it does not read again.
class AsyncSettings : public QObject {
    Q_OBJECT

public:
    /// \param p_File absolute
    explicit AsyncSettings(QString p_File, QObject* p_Parent = nullptr);
    /// Waits until all that was asked for is done.
    ~AsyncSettings() override;

    /// Answered by `WasRead`.
    void Read();
    /// Answered by `Written`. \param p_Changes an invalid value removes its key
    void Write(SettingsFile::Values const& p_Changes);

Q_SIGNALS:
    /// \param p_Failure why nothing is known; none when there is no file
    void WasRead(Varnholt::Host::SettingsFile::Values p_Values, std::optional<Failure> p_Failure);
    /// \param p_Failure why the file is as it was
    void Written(std::optional<Failure> p_Failure);

private:
    /// Does the work on the other thread and answers on this one.
    template <typename Result>
    void Meet(std::function<Result()> p_Work, std::function<void(Result)> p_Answer);

    QString const File;
    QThread Thread;
    QObject* const Worker; ///< lives on that thread
};

} // namespace Varnholt::Host
