#include "Publisher/Tree/BuildRecord.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Publisher {

namespace {

QString const c_Builds = QStringLiteral("builds");
QString const c_Removed = QStringLiteral("removed");
QString const c_Md5 = QStringLiteral("md5");
QString const c_Time = QStringLiteral("time");

QByteArray Md5Of(QByteArray const& p_Bytes)
{
    return QCryptographicHash::hash(p_Bytes, QCryptographicHash::Md5).toHex().toUpper();
}

} // namespace

BuildRecord::BuildRecord(QString const& p_Root, QString const& p_AppId)
    : File(TreeMark(p_Root).PrivatePath(p_AppId + QStringLiteral(".builds")))
{
    QFile file(File);
    if (!file.exists())
        return;
    QJsonObject root;
    if (file.open(QIODevice::ReadOnly))
        root = QJsonDocument::fromJson(file.readAll()).object();
    if (!root[c_Builds].isArray()) {
        throw Failure(File + QStringLiteral(": the record of the builds' order is damaged: remove "
                                            "it, and the times of their manifests tell the order"));
    }
    Builds = root[c_Builds].toVariant().toStringList();
    QJsonObject const removed = root[c_Removed].toObject();
    for (auto build = removed.begin(); build != removed.end(); ++build) {
        QJsonObject const removal = build->toObject();
        Removed[build.key()] = {removal[c_Md5].toString().toLatin1(),
                                QDateTime::fromString(removal[c_Time].toString(), Qt::ISODate)};
    }
}

QByteArray BuildRecord::Text() const
{
    QJsonObject removed;
    for (auto const& [build, removal] : Removed) {
        removed[build] = QJsonObject{{c_Md5, QString::fromLatin1(removal.Md5)},
                                     {c_Time, removal.Time.toString(Qt::ISODate)}};
    }
    QJsonObject const root{{c_Builds, QJsonArray::fromStringList(Builds)}, {c_Removed, removed}};
    return QJsonDocument(root).toJson();
}

void BuildRecord::Remove(QString const& p_Build, QByteArray const& p_Manifest)
{
    QDateTime const now = QDateTime::currentDateTimeUtc();
    for (auto removal = Removed.begin(); removal != Removed.end();) {
        bool const isOld = removal->second.Time.daysTo(now) > c_CachedDays;
        removal = isOld ? Removed.erase(removal) : std::next(removal);
    }
    Removed[p_Build] = {Md5Of(p_Manifest), now};
    Builds.removeAll(p_Build);
}

bool BuildRecord::MayBeCached(QString const& p_Build, QByteArray const& p_Manifest) const
{
    auto const removal = Removed.find(p_Build);
    return removal != Removed.end() && removal->second.Md5 != Md5Of(p_Manifest) &&
           removal->second.Time.daysTo(QDateTime::currentDateTimeUtc()) <= c_CachedDays;
}

} // namespace Varnholt::Publisher
