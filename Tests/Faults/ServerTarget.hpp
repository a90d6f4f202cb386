#pragma once

#include "Tests/Faults/FaultGame.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace Varnholt::TestSupport {

/// A file of a content server that a fault strikes.
struct ServerTarget {
    enum class Type {
        Document, ///< fetched as a whole
        Size,     ///< of a content file: an answer of headers alone
        Content,  ///< fetched in ranges
    };
    static std::vector<ServerTarget> const& All();

    QString Name;
    std::function<QString(FaultGame const&)> Path; ///< on the server
    std::function<QByteArray(FaultGame const&)> Body;
    Type Kind = Type::Document;
    bool IsUpdate = false; ///< only an installed game asks for it

    /// The name of the script that answers the requests for it.
    QString Script(FaultGame const& p_Game) const;
    /// Makes the game one that will ask for the file.
    void Prepare(FaultGame& p_Game) const;
    /// What is wrong of it when all is over.
    QStringList Faults(FaultGame const& p_Game) const;
};

} // namespace Varnholt::TestSupport
