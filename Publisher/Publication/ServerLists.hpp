#pragma once

#include "Publisher/Publication/PublishOptions.hpp"
#include "Publisher/Tree/TreeText.hpp"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The lists that all channels of a tree share: the servers that hold the content, one list for all
/// applications, and an application's realm list.
namespace Varnholt::Publisher::ServerLists {

QString HostsPath(QString const& p_Output);
QByteArray HostsText(QStringList const& p_Hosts);
QString RealmListPath(QString const& p_Output, QString const& p_AppId);
QByteArray RealmListText(QString const& p_Address);

/// Refuses a build that would leave a new tree without hosts, and one for the development channel
/// that would change what live players get.
/// \throws Failure with the status of a usage error
void CheckBuild(PublishOptions const& p_Options);

/// Replaces a list of a published tree.
/// \param p_AppId empty for the list of all applications
/// \return what it held before, null when there was none
/// \throws Failure; nothing has changed then
QByteArray Replace(QString const& p_Output, QString const& p_AppId, TreeText const& p_List,
                   SigningOptions const& p_Signing = {});

} // namespace Varnholt::Publisher::ServerLists
