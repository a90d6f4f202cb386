#pragma once

#include "Tests/Support/ScriptedServer.hpp"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <vector>

namespace Varnholt::TestSupport {

/// One file of a published build.
struct SampleFile {
    QString Path;
    QByteArray Bytes;
    qint32 Flags = 0;
    QString Locale = {};
    bool Streamed = false;
};

/// A small published build: version file, manifest, host list, realm list, files.
///
/// \code
/// SampleContent content;
/// content.Add({"Data/a.txt", "hello"}).Add({"b", "b", 0x20, "frFR"});
/// content.Publish(server);
/// \endcode
class SampleContent {
public:
    explicit SampleContent(QString const& p_AppId = QStringLiteral("pelmora_app"),
                           QString const& p_Build = QStringLiteral("build_1"));

    SampleContent& Add(SampleFile const& p_File);

    /// Puts everything on the default server and the files on the mirrors too. Without mirrors the
    /// default server is named as the only one.
    void Publish(ScriptedServer& p_Server,
                 std::vector<ScriptedServer*> const& p_Mirrors = {}) const;

    QJsonObject Manifest() const;
    QByteArray ManifestBytes() const;
    /// Path of a file below the server: "/" + AppId + "/" + location.
    QString ServerPath(QString const& p_Path) const;
    QString VersionPath() const;
    QString ManifestPath() const;
    QString RealmListPath() const;
    /// The location that the manifest gives to a path.
    QString Location(QString const& p_Path) const;

    /// 32 upper-case hexadecimal digits.
    static QString Md5(QByteArray const& p_Bytes);
    /// Bytes that look random and are the same for the same seed.
    static QByteArray Bytes(int p_Size, quint32 p_Seed = 1);

    QString AppId;
    QString Build;
    QString BuildStr = QStringLiteral("Sample build");
    QByteArray RealmList = "SET realmlist \"realm.varnholt.example\"";
    std::vector<SampleFile> Files;
    std::vector<std::pair<QString, QString>> Locales{
        {QStringLiteral("enUS"), QStringLiteral("English")},
        {QStringLiteral("frFR"), QStringLiteral("French")}};
};

} // namespace Varnholt::TestSupport
