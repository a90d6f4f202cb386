#pragma once

#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Settings/SettingsFile.hpp"

#include <QObject>
#include <QString>
#include <QThreadPool>

#include <optional>

namespace Varnholt::Host {

/// A settings file for one who must not wait for it, as a window does not: requests return at once,
/// are met in their order on a thread of this object's own, which its end waits for, and answered
/// by signals on the thread that this lives on. What a session has read of the file already it does
/// not read again.
class AsyncSettings : public QObject {
    Q_OBJECT

public:
    /// \param p_File absolute
    explicit AsyncSettings(QString p_File, QObject* p_Parent = nullptr);
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
    QString const File;
    QThreadPool Thread; ///< one; its end waits until all that was asked for is done
};

} // namespace Varnholt::Host
