#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace Varnholt::TestSupport {

/// The folder of a game, below one of its own, and what lies in it.
class GameFolder {
public:
    /// \param p_Name below the temporary folder, ends in "/"; it is not made
    explicit GameFolder(QString const& p_Name);

    QString Path(QString const& p_File) const { return Folder + p_File; }
    bool Has(QString const& p_File) const;
    /// Null without the file.
    QByteArray Read(QString const& p_File) const;
    /// Writes a file, with its folders.
    void Put(QString const& p_File, QByteArray const& p_Bytes) const;
    /// Names of all files in the folder and below, in alphabetical order.
    QStringList FilesOnDisk() const;

    QTemporaryDir Temporary;
    QString Base;   ///< canonical, of everything here
    QString Folder; ///< ends in "/"
};

} // namespace Varnholt::TestSupport
