#pragma once

#include "Host/Core/Settings/AsyncSettings.hpp"

#include <QFileSystemWatcher>
#include <QTimer>

namespace Varnholt::Host {

/// The settings file of a window, which other programs may change too. Requests return at once.
class SettingsWatch : public QObject {
    Q_OBJECT

public:
    /// \param p_File absolute
    explicit SettingsWatch(QString const& p_File, QObject* p_Parent = nullptr);

    /// From now on each change of the file, by whomever, is answered by `WasRead`.
    void Begin();
    /// Answered by `WasRead`.
    void Read() { File.Read(); }
    /// \param p_Changes an invalid value removes its key
    void Write(SettingsFile::Values const& p_Changes) { File.Write(p_Changes); }

Q_SIGNALS:
    /// \param p_Failure why nothing is known; none when there is no file
    void WasRead(Varnholt::Host::SettingsFile::Values p_Values, std::optional<Failure> p_Failure);
    void WriteFailed(Varnholt::Host::Failure p_Failure);

private:
    QString const Path;
    AsyncSettings File;
    QFileSystemWatcher Watcher;
    QTimer Settling; ///< a program that writes it does so in several steps
};

} // namespace Varnholt::Host
