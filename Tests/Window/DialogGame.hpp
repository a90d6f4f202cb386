#pragma once

#include "Host/Window/Main/GameController.hpp"
#include "Tests/Host/HostGame.hpp"

#include <QDialog>

#include <functional>
#include <memory>

class QAbstractButton;
class QLabel;

namespace Varnholt::TestSupport {

/// A game with a controller, and a dialog over it whose parts a test finds by what they say.
class DialogGame : public HostGame {
public:
    DialogGame();
    ~DialogGame();

    /// Begins the session; the options may be changed until then.
    [[nodiscard]] bool Open();
    Host::GameController& Controller() { return *Current; }
    /// Shows the dialog, which is the game's from now on.
    void Show(QDialog* p_Dialog);

    /// The visible button that says this, or else begins with these words, without the mnemonic;
    /// null when there is none.
    QAbstractButton* Button(QString const& p_Text) const;
    /// Whether that button is there and can be pressed.
    bool Offers(QString const& p_Text) const;
    /// All visible labels, lines.
    QString Texts() const;
    [[nodiscard]] static bool WaitUntil(std::function<bool()> const& p_Condition);

    Host::HostOptions Options;
    std::vector<Host::RunRequest> Ended; ///< the requests, in their order
    std::vector<Host::RunResult> Results;
    std::unique_ptr<QDialog> Dialog;

private:
    std::unique_ptr<Host::GameController> Current;
};

} // namespace Varnholt::TestSupport
