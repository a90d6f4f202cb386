#include "Host/Gateway/Document.hpp"

#include "Host/Gateway/DocumentJudge.hpp"
#include "Host/Gateway/HttpStatus.hpp"

namespace Varnholt::Gateway {

namespace {

bool EndsWith(std::string const& p_Text, std::string const& p_End)
{
    return p_Text.size() >= p_End.size() &&
           p_Text.compare(p_Text.size() - p_End.size(), p_End.size(), p_End) == 0;
}

} // namespace

std::string Document::PartUrl() const
{
    return HasBody ? Url + DocumentJudge::c_SignatureSuffix : Url;
}

void Document::Fetch(bool p_Signature)
{
    HasBody = p_Signature;
    Attempts = 0;
    NotBefore = {};
}

bool Document::IsOptional() const
{
    return IsHostList() || EndsWith(Path, "/realmlist.info") || EndsWith(Path, "/trust-key");
}

bool Document::EndsSoon(FetchProblem const& p_Problem)
{
    return p_Problem.Kind == FetchProblem::Type::Dropped ||
           p_Problem.HttpStatus >= HttpStatus::c_FirstServerError;
}

std::size_t Document::MostBytes() const
{
    constexpr std::size_t c_MiB = 1024UL * 1024;

    if (HasBody)
        return DocumentJudge::c_MostSignatureBytes;
    bool const isShort = IsHostList() || EndsWith(Path, "/trust-key") ||
                         EndsWith(Path, "/version.json") || EndsWith(Path, "/version_dev.json");
    return isShort ? c_MiB : 48 * c_MiB;
}

bool Document::IsOne(std::string const& p_Path)
{
    auto const application = p_Path.find('/');
    if (application == std::string::npos)
        return p_Path == "cdns.info";
    std::string const below = p_Path.substr(application + 1);
    return below == "version.json" || below == "version_dev.json" || below == "realmlist.info" ||
           (below.rfind("builds/", 0) == 0 && EndsWith(below, "/info.json"));
}

} // namespace Varnholt::Gateway
