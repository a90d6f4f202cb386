#pragma once

#include "Publisher/Signatures/SigningOptions.hpp"
#include "Publisher/Tree/BuildIdentity.hpp"
#include "Publisher/Tree/ContentPlatform.hpp"

#include <QString>
#include <QStringList>

#include <map>
#include <optional>

namespace Varnholt::Publisher {

/// What is to be published, and where.
struct PublishOptions {
    QString Source; ///< folder that holds the game
    QString Output; ///< folder that is, or becomes, the published tree
    BuildIdentity Build;
    QString RulesFile;                       ///< empty: no rules
    std::map<QString, QString> Locales;      ///< names by tag, added to those of the rules file
    std::optional<QStringList> Hosts;        ///< none: the published list stays
    std::optional<QString> RealmListAddress; ///< none: the published one stays
    bool Local = false; ///< a tree without a list of hosts gets one that names this machine
    QString AppId = QStringLiteral("pelmora_app");
    ContentPlatform Platform = ContentPlatform::Mac;
    bool DevChannel = false; ///< only clients on the development channel get this build
    bool ReadIndex = true;   ///< take the digests of unchanged files from the index
    bool WriteIndex = true;  ///< renew the index
    bool ReadStore = false;  ///< write content of the tree anew whose bytes are damaged
    int Jobs = 0;            ///< files that are read at once; 0: as many as there are cores
    bool DryRun = false;     ///< change nothing, only answer what would be written
    SigningOptions Signing;  ///< of no meaning in a dry run
    bool IfChanged = false; ///< publish nothing when the channel's build is what would be published
};

} // namespace Varnholt::Publisher
