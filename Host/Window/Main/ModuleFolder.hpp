#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <set>

namespace Varnholt::Host {

/// The folder that modules are dropped into.
class ModuleFolder : public QObject {
    Q_OBJECT

public:
    explicit ModuleFolder(QString p_Folder, QObject* p_Parent = nullptr);

    /// Answered by `Appeared` for what is there, and from then on for what comes.
    void Watch();
    /// A file that is no module yet may become one while it is being copied.
    void LookAgainAt(QString const& p_File);

Q_SIGNALS:
    void Appeared(QStringList p_Files);

private:
    void Look();

    QString const Folder;
    QFileSystemWatcher Watcher;
    QTimer Settling; ///< a file that is being copied changes many times
    std::set<QString> Known;
};

} // namespace Varnholt::Host
