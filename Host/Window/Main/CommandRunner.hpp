#pragma once

#include "Host/Window/Pages/PageCommand.hpp"

#include <QObject>

namespace Varnholt::Host {

class Dialogs;
class GameController;

/// Does what the buttons and menus of a page ask for: by a request, by a dialog or by a program of
/// the desktop.
class CommandRunner : public QObject {
    Q_OBJECT

public:
    /// \param p_LogFile that `ShowLog` shows; empty: there is none
    CommandRunner(GameController& p_Controller, Dialogs& p_Dialogs, QString p_LogFile,
                  QObject* p_Parent);

    void Run(PageCommand p_Command);

Q_SIGNALS:
    /// A file or folder that the desktop shall show.
    void ShowRequested(QString p_Path);
    void HistoryRequested();
    void DiagnosisRequested();

private:
    void TryAgain();

    GameController& Controller;
    Dialogs& Windows;
    QString const LogFile;
};

} // namespace Varnholt::Host
