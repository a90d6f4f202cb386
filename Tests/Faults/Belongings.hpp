#pragma once

#include "Tests/Host/HostGame.hpp"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace Varnholt::TestSupport {

/// What lay in a game's folder at some time, and may not be lost to what goes wrong later.
class Belongings {
public:
    /// The content must be complete. \param p_NotKept files that are none of this
    explicit Belongings(HostGame const& p_Game, QStringList const& p_NotKept = {});

    /// Sentences: finished files that are not finished any more, partial files that have shrunk or
    /// hold other bytes, lines of lists and of the configuration that are gone, files of the
    /// player's that changed.
    QStringList Lost() const;
    /// Files that neither the build nor the player put into the folder, nor the game's own lists
    /// and configuration.
    QStringList Strays() const;

    static QString const c_Config;
    static QStringList const c_Lists;

private:
    bool IsLost(QString const& p_File, QByteArray const& p_Before) const;
    bool IsListLost(QByteArray const& p_Before, QByteArray const& p_Now) const;
    static bool IsConfigLost(QByteArray const& p_Before, QByteArray const& p_Now);

    HostGame const& Game;
    QMap<QString, QByteArray> Right; ///< bytes of the build by path
    QMap<QString, QByteArray> Before;
};

} // namespace Varnholt::TestSupport
