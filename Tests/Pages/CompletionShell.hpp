#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace Varnholt::TestSupport {

/// A shell that completes command lines by a file of ours.
class CompletionShell {
public:
    /// \param p_Name "bash", "zsh" or "fish" \param p_File the completion; its name is zsh's
    /// concern
    CompletionShell(QString const& p_Name, QString const& p_File);

    static QStringList Names();
    /// The file that was built for it, below the folder of data.
    static QString BuiltFile(QString const& p_Name, QString const& p_Program);

    /// What it offers at the end of each line, in alphabetical order; of a path the last part, and
    /// without what stands before "=".
    QVector<QStringList> Offers(QStringList const& p_Lines);
    /// What it complained of meanwhile, and what it did besides.
    QString Complaints;

private:
    QString Name;
    QString File;
};

} // namespace Varnholt::TestSupport
