#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <map>

namespace Varnholt::Publisher {

/// What the publisher notes down of an application's builds: the order in which they were
/// published, which times of files lose when a tree is copied, and which were removed lately.
class BuildRecord {
public:
    /// Caches may hold the manifest of a removed build for so long.
    static constexpr int c_CachedDays = 30;

    /// A tree without a record has an empty one.
    /// \throws Failure when it cannot be understood
    BuildRecord(QString const& p_Root, QString const& p_AppId);

    QString const& Path() const { return File; }
    QByteArray Text() const;

    QStringList const& Order() const { return Builds; }
    void SetOrder(QStringList const& p_Builds) { Builds = p_Builds; }

    /// \param p_Manifest the build's, as it was
    void Remove(QString const& p_Build, QByteArray const& p_Manifest);

    /// Whether clients may get another manifest than this one by the build's name.
    bool MayBeCached(QString const& p_Build, QByteArray const& p_Manifest) const;

private:
    struct Removal {
        QByteArray Md5; ///< of the manifest
        QDateTime Time;
    };

    QString File;
    QStringList Builds;
    std::map<QString, Removal> Removed; ///< by build
};

} // namespace Varnholt::Publisher
