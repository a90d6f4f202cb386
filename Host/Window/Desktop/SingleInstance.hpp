#pragma once

#include "Files/FileLock.hpp"

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace Varnholt::Host {

/// One window for each settings file: a second program asks the first one to show itself.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        First,  ///< and it stays so as long as this lives
        Second, ///< the first one has been asked
        Unsure, ///< a first one is there and does not answer, or nothing can be known
    };

    /// \param p_SettingsFile absolute
    explicit SingleInstance(QString const& p_SettingsFile, QObject* p_Parent = nullptr);

    /// Takes some seconds at most, and that only when a first one does not answer.
    Outcome Begin();

Q_SIGNALS:
    /// Somebody has started the program once more.
    void ShowRequested();

private:
    bool AskFirst() const;
    void OnConnection();

    QString const Name; ///< of lock and socket
    FileLock Lock;
    QLocalServer Server;
};

} // namespace Varnholt::Host
