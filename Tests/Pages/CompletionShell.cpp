#include "Tests/Pages/CompletionShell.hpp"

#include "Tests/Pages/ToolRun.hpp"

#include <QFileInfo>

namespace Varnholt::TestSupport {

namespace {

QString Candidate(QString const& p_Line)
{
    QString line = p_Line.section(QLatin1Char('\t'), 0, 0); // fish explains them behind it
    if (line.startsWith(QLatin1Char('-')) && line.contains(QLatin1Char('=')))
        line = line.section(QLatin1Char('='), 1);
    while (line.size() > 1 && line.endsWith(QLatin1Char('/')))
        line.chop(1);
    return line.section(QLatin1Char('/'), -1);
}

} // namespace

CompletionShell::CompletionShell(QString const& p_Name, QString const& p_File)
    : Name(p_Name)
    , File(p_File)
{
}

QStringList CompletionShell::Names()
{
    return {QStringLiteral("bash"), QStringLiteral("zsh"), QStringLiteral("fish")};
}

QString CompletionShell::BuiltFile(QString const& p_Name, QString const& p_Program)
{
    if (p_Name == QLatin1String("bash"))
        return QStringLiteral("bash-completion/completions/") + p_Program;
    return p_Name == QLatin1String("zsh")
               ? QStringLiteral("zsh/site-functions/_") + p_Program
               : QStringLiteral("fish/vendor_completions.d/%1.fish").arg(p_Program);
}

QVector<QStringList> CompletionShell::Offers(QStringList const& p_Lines)
{
    QString const file =
        Name == QLatin1String("zsh") ? QFileInfo(File).absolutePath() : File; // it looks them up
    ToolRun const shell(QStringLiteral(VARNHOLT_COMPLETION_DRIVERS "/complete-") + Name,
                        QStringList(file) + p_Lines);
    Complaints = shell.Err;
    for (QString const& made : shell.Made)
        Complaints += QStringLiteral("made %1").arg(made);
    if (shell.Status != 0)
        Complaints += QStringLiteral("status %1").arg(shell.Status);
    QVector<QStringList> offers;
    QStringList candidates;
    for (QString const& line : shell.Out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line != QLatin1String("%")) {
            candidates += Candidate(line);
            continue;
        }
        candidates.sort();
        candidates.removeDuplicates();
        offers += candidates;
        candidates.clear();
    }
    if (offers.size() != p_Lines.size())
        Complaints += QStringLiteral("%1 lines completed").arg(offers.size());
    offers.resize(p_Lines.size());
    return offers;
}

} // namespace Varnholt::TestSupport
