#pragma once

#include "Tests/Support/ScopedVariable.hpp"

#include <QImage>
#include <QProcess>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <optional>

namespace Varnholt::TestSupport {

/// An X server that shows its screen to nobody, and hands on it: keys and buttons reach programs as
/// those of a real keyboard and mouse.
class Screen {
public:
    Screen(int p_Width, int p_Height);
    ~Screen();

    /// Why there is none; empty when there is.
    QString const& Problem() const { return WhyNot; }
    QString const& Display() const { return Name; }

    /// The visible window whose title matches a regular expression; 0: there is none.
    qulonglong Window(QString const& p_Title) const;
    /// How many windows are visible, menus among them.
    int Windows() const;
    /// Waits for it and gives it the keyboard. \return false when it never came
    [[nodiscard]] bool Focus(QString const& p_Title) const;
    /// \param p_Keys such as "alt+i"
    void Press(QStringList const& p_Keys) const;
    void Type(QString const& p_Text) const;
    /// Presses the left button there, and takes the mouse out of the way.
    void Click(QPoint const& p_Place) const;
    void Resize(qulonglong p_Window, QSize const& p_Size) const;
    /// What the screen shows now.
    QImage Picture() const;

    /// Waits until the screen has shown the same for a moment. \return what it shows
    QImage StillPicture() const;

private:
    QString Do(QStringList const& p_Arguments) const;

    QTemporaryDir Folder;
    QProcess Server;
    QString Name;
    QString WhyNot;
};

} // namespace Varnholt::TestSupport
