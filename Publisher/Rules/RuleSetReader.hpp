#pragma once

#include "Publisher/Rules/RuleSet.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QJsonObject>
#include <QString>

namespace Varnholt::Publisher {

/// Reads a rules file:
/// {"locales": {"frFR": "Français"}, "rules": [{"match": "Data/frFR/**", "locale": "frFR"}]}
///
/// Whatever is not understood is an error, since a misspelt flag would otherwise publish a build
/// that looks right and does not work.
class RuleSetReader {
public:
    /// \param p_Platform decides the flag behind "game-executable"
    explicit RuleSetReader(QString const& p_FileName, ContentPlatform p_Platform);

    /// \param p_Locales languages declared elsewhere, names by tag; they win over the file's
    /// \throws Failure that names the file, the place and the cause
    RuleSet Read(std::map<QString, QString> const& p_Locales) const;

private:
    QByteArray ReadText() const;
    QJsonObject ParseDocument(QByteArray const& p_Text) const;
    std::map<QString, QString> ReadLocales(QJsonObject const& p_Document) const;
    Rule ReadRule(QJsonValue const& p_Value, QString const& p_Place) const;
    QString ReadMatch(QJsonObject const& p_Rule, QString const& p_Place) const;
    qint32 ReadFlags(QJsonValue const& p_Value, QString const& p_Place) const;
    QString ReadText(QJsonValue const& p_Value, QString const& p_Place) const;
    bool ReadSwitch(QJsonValue const& p_Value, QString const& p_Place) const;

    void CheckKeys(QJsonObject const& p_Object, QStringList const& p_Known,
                   QString const& p_Place) const;
    [[noreturn]] void Fail(QString const& p_Place, QString const& p_Cause) const;

    QString FileName;
    ContentPlatform Platform;
};

} // namespace Varnholt::Publisher
