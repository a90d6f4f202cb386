#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <vector>

namespace Varnholt::Publisher {

/// One file of a build that is published.
struct PublishedFile {
    QString Path;     ///< in the game folder
    QString Location; ///< in the application's folder on a server
    QString Md5;
    QString Locale; ///< empty for all
    qint32 Flags = 0;
    bool Streamed = false;

    /// Whether an installation in that language holds it; every file is wanted by an empty one.
    bool IsFor(QString const& p_Locale) const
    {
        return p_Locale.isEmpty() || Locale.isEmpty() || Locale == p_Locale;
    }
};

/// A build as its manifest tells it, of either platform.
struct PublishedBuild {
    QString Id;
    QString Name; ///< shown to people
    qint32 Number = 0;
    QString Platform;                   ///< "mac" or "win"
    std::map<QString, QString> Locales; ///< display names by tag
    std::vector<PublishedFile> Files;   ///< base files first

    /// \param p_Source what the bytes are, for the failure
    /// \throws Failure when they are not a manifest
    static PublishedBuild Parse(QByteArray const& p_Manifest, QString const& p_Source);
};

} // namespace Varnholt::Publisher
