#pragma once

#include <QMetaType>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

namespace Varnholt::Host {

/// What a module says about itself.
struct ModuleInfo {
    QString File;
    QString Name;
    QString AppId;
    QString MetaDataName;
    QString Version;
    QString TrustKey; ///< the key's line of who must have signed the documents; empty: nobody
    QStringList GameArguments;   ///< of the game's program, before those of the player
    QStringList LoginFiles;      ///< in the game folder; they log a player in while they exist
    QString LoginTemplateSuffix; ///< of the files that they are made of
    QVector<QPair<QString, QString>> Presentation; ///< what it is, and the module's value
    QVector<QPair<QString, QString>> Images;       ///< what it is, and its resource path
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::ModuleInfo)
