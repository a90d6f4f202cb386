#pragma once

#include "Tests/Host/HostGame.hpp"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

namespace Varnholt::TestSupport {

/// The built varnholt-host on a terminal of its own: what it draws there, and a keyboard.
class Terminal {
public:
    /// Starts it. \param p_Variables of the environment; a null value takes one away
    Terminal(HostGame const& p_Game, QStringList const& p_Arguments,
             QMap<QString, QString> const& p_Variables = {}, int p_Columns = 120);
    /// Kills it when it still runs.
    ~Terminal();
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    void Type(QByteArray const& p_Keys) const;
    void Resize(int p_Columns) const;
    /// Whether what is typed is shown.
    bool Echoes() const;

    /// Waits while the program draws. \return false when the condition never held
    [[nodiscard]] bool WaitUntil(std::function<bool()> const& p_Condition);
    /// Waits until the line of the cursor holds the text.
    [[nodiscard]] bool WaitForLine(QString const& p_Text);
    /// Waits for the end of the program. \return its exit status, -1 when a signal ended it
    int Finish();

    /// Everything that was written, as it was.
    QByteArray const& Written() const { return Bytes; }
    /// What a person sees: the lines so far, without trailing blanks; the last one is the cursor's.
    QStringList Screen() const;

    static constexpr char c_CtrlC = '\x03';
    static constexpr char c_CtrlD = '\x04';

private:
    bool Read();

    int Master = -1;
    int Process = -1;
    QByteArray Bytes;
};

} // namespace Varnholt::TestSupport
