#pragma once

#include <QObject>
#include <QString>

namespace Varnholt::Host {

/// Tells the desktop what a user who looks elsewhere may want to know. Where nobody shows it,
/// nothing happens. Does not wait.
class Notifier : public QObject {
    Q_OBJECT

public:
    explicit Notifier(QObject* p_Parent = nullptr);

    /// \param p_Text plain; one that was shown before is replaced
    void Show(QString const& p_Title, QString const& p_Text);

Q_SIGNALS:
    /// The user has chosen the notification.
    void Chosen();

private Q_SLOTS:
    void OnAction(uint p_Id, QString const& p_Action);

private:
    uint Id = 0; ///< of the latest notification; 0: none
};

} // namespace Varnholt::Host
