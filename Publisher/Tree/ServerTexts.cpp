#include "Publisher/Tree/ServerTexts.hpp"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace Varnholt::Publisher::ServerTexts {

QStringList VersionFiles()
{
    return {QStringLiteral("version.json"), QStringLiteral("version_dev.json")};
}

QString BuildOf(QByteArray const& p_Version, QString const& p_Source, QStringList& p_Defects)
{
    QString build = QJsonDocument::fromJson(p_Version).object()[QLatin1String("build")].toString();
    if (build.isEmpty())
        p_Defects += p_Source + QStringLiteral(": names no build");
    return build;
}

QStringList HostsOf(QByteArray const& p_List, QString const& p_Source, QStringList& p_Defects)
{
    QString const list = QString::fromUtf8(p_List);
    QStringList const names = list.split(QLatin1Char(' '));
    bool const isClean = std::all_of(names.begin(), names.end(), [](QString const& p_Name) {
        return !p_Name.isEmpty() && p_Name.trimmed() == p_Name;
    });
    if (!isClean) {
        p_Defects += p_Source + QStringLiteral(": is not a line of names with one blank between "
                                               "them and nothing behind the last");
    }
    return list.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace Varnholt::Publisher::ServerTexts
