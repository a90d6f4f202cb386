#pragma once

#include "Host/Cli/Choice.hpp"

#include <QMutex>
#include <QString>

namespace Varnholt::Host {

/// The program's output: results on standard output, everything else on standard error, and all of
/// it printable. A line that is redrawn in place, the progress of a run, gives way to the others.
/// Any thread.
class Console {
public:
    Console(Color p_Colors, bool p_Quiet);
    /// Leaves no half line behind.
    ~Console();
    Console(Console const&) = delete;
    Console& operator=(Console const&) = delete;

    void Result(QString const& p_Line);
    /// What a user may want to know; nothing in quiet mode.
    void Note(QString const& p_Line);
    /// A failure: what happened, without a full stop, and what to do about it.
    /// \param p_IsAlarming false when it is only an answer
    void Error(QString const& p_Sentence, QString const& p_Remedy, bool p_IsAlarming = true);
    /// Of the log that the user has asked for.
    void Log(QString const& p_Line);
    /// Redraws the progress line, cut to the terminal's width; empty: takes it away.
    void ShowStatus(QString const& p_Line);

    bool IsQuiet() const { return Quiet; }
    /// True when a line can be redrawn in place.
    bool IsTerminal() const { return Redraws; }
    /// Columns of the terminal.
    int Width() const;
    /// Whether the terminal shows more than ASCII.
    bool IsUnicode() const { return Unicode; }

private:
    void WriteAbove(QString const& p_Line);
    void DrawStatus();
    QString Colored(QString const& p_Text, char const* p_Code) const;

    QMutex OutputMutex;
    bool Quiet;
    bool Redraws;
    bool UsesColors;
    bool Unicode;
    QString Status;
};

} // namespace Varnholt::Host
