#include "Host/Core/Jobs/VersionText.hpp"

#include "Host/Core/Network/FetchFailure.hpp"
#include "Launcher/Application/RemoteText.hpp"

#include <QCoreApplication>

namespace Varnholt::Host::VersionText {

std::optional<QString> BuildIn(std::string const& p_Content)
{
    auto const version = Launcher::RemoteText::ObjectOf(QByteArray::fromStdString(p_Content));
    if (!version)
        return std::nullopt;
    return (*version)[QLatin1String("build")].toString();
}

std::optional<Failure> FaultOf(std::optional<QString> const& p_Build, QString const& p_Url)
{
    if (!p_Build)
        return DamagedDocument(p_Url);
    if (!p_Build->isEmpty())
        return std::nullopt;
    return Failure{FailureKind::ContentInvalid, p_Url,
                   QCoreApplication::translate("Varnholt::Host::VersionText", "it names no build")};
}

} // namespace Varnholt::Host::VersionText
