#pragma once

#include <QMap>
#include <QMutex>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace Varnholt::Host {

/// The settings store of host and module, an INI file. All operations from any thread.
class HostSettings {
public:
    /// Where a password is kept. A file with it is its owner's alone, whatever its mode was.
    static constexpr char c_PasswordKey[] = "options/content-password";

    /// \param p_File absolute; its folder is created
    explicit HostSettings(QString const& p_File);
    /// Writes what has not found room until now.
    ~HostSettings();
    HostSettings(HostSettings const&) = delete;
    HostSettings& operator=(HostSettings const&) = delete;

    QVariant Value(QString const& p_Key, QVariant const& p_Default = {}) const;
    void SetValue(QString const& p_Key, QVariant const& p_Value);
    QStringList Keys() const;
    void Remove(QString const& p_Key);
    /// Writes what has changed. \return false when the file cannot be read or written
    bool Flush();
    QString File() const { return Store.fileName(); }

private:
    using Values = QMap<QString, QVariant>;

    bool Write();
    Values Merged() const;

    mutable QMutex StoreMutex;
    QSettings Store; ///< only read
    Values Held;     ///< not in the store yet; an invalid value removes its key
};

} // namespace Varnholt::Host
