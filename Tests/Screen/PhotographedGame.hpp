#pragma once

#include "Tests/Screen/ScreenGame.hpp"

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// A game whose window is pressed by place and by keys that are the same in each language, and of
/// which pictures are taken. What does not come as it should fails the test.
class PhotographedGame : public ScreenGame {
public:
    /// \param p_Size of screen and window \param p_Scale of what is in it
    /// \param p_Prefix of the names of the pictures
    PhotographedGame(QSize const& p_Size, double p_Scale, QString const& p_Language,
                     QString const& p_Prefix);

    /// Opens the window anew, as large as the screen.
    void Reopen(QStringList const& p_Options = {}, QString const& p_Title = c_Name);
    /// The large button, whether there is one to pause beside it or not.
    void PressPrimary();
    /// An entry of the menu. \param p_Keys lead to it
    void Choose(QStringList const& p_Keys);
    /// Waits until the screen shows something else than before, and that stands still.
    void Take(QString const& p_State);
    /// What the screen shows right now.
    void TakeAtOnce(QString const& p_State);
    /// Opens something by keys, shows it, closes it by Escape.
    void TakeOpened(QString const& p_State, QStringList const& p_Keys);
    /// Waits until nothing is under way that has a measure.
    [[nodiscard]] bool WaitForRest();

private:
    void Save(QString const& p_State, QImage const& p_Picture);

    QSize const Size;
    double const Scale;
    QString const Prefix;
    QImage Last; ///< that was taken: what comes is another one
};

} // namespace Varnholt::TestSupport
