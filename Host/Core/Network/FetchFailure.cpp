#include "Host/Core/Network/FetchFailure.hpp"

#include <QCoreApplication>
#include <QUrl>

namespace Varnholt::Host {

namespace {

FailureKind KindOf(Gateway::FetchProblem::Type p_Type)
{
    using Type = Gateway::FetchProblem::Type;

    switch (p_Type) {
    case Type::Unreachable:
    case Type::Dropped:
        return FailureKind::ServerUnreachable;
    case Type::ProxyUnreachable:
        return FailureKind::ProxyUnreachable;
    case Type::Untrusted:
        return FailureKind::CertificateWrong;
    case Type::Silent:
        return FailureKind::ServerSilent;
    case Type::Refused:
        return FailureKind::ServerRefusal;
    case Type::Unusable:
        break;
    case Type::Unsigned:
        return FailureKind::SignatureMissing;
    case Type::Forged:
        return FailureKind::SignatureWrong;
    case Type::ForeignKey:
        return FailureKind::KeyWrong;
    case Type::Misplaced:
        return FailureKind::GameWrong;
    case Type::RolledBack:
        return FailureKind::RolledBack;
    case Type::Expired:
        return FailureKind::SignatureExpired;
    case Type::OfAnotherBuild:
        return FailureKind::ManifestDiffers;
    }
    return FailureKind::ContentInvalid;
}

} // namespace

Failure ExplainFetch(Gateway::FetchProblem const& p_Problem)
{
    return {KindOf(p_Problem.Kind), UrlOf(p_Problem), QString::fromStdString(p_Problem.Cause)};
}

Failure DamagedDocument(QString const& p_Url)
{
    return {FailureKind::ContentInvalid, p_Url,
            QCoreApplication::translate("Varnholt::Host::FetchFailure",
                                        "it is damaged, or a page of another kind")};
}

QString UrlOf(Gateway::FetchProblem const& p_Problem)
{
    return QUrl(QString::fromStdString(p_Problem.Url)).toString();
}

} // namespace Varnholt::Host
