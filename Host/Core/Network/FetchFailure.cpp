#include "Host/Core/Network/FetchFailure.hpp"

#include "Host/Core/Failures/TextTemplate.hpp"

#include <QCoreApplication>
#include <QUrl>

#include <iterator>

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

struct Causes {
    Q_DECLARE_TR_FUNCTIONS(Varnholt::Host::FetchFailure)

public:
    /// In the order of the causes; {d} stands for the detail.
    static constexpr char const* c_Words[] = {
        "{d}",
        QT_TR_NOOP("HTTP status {d}"),
        QT_TR_NOOP("connection refused"),
        QT_TR_NOOP("no way to the host"),
        QT_TR_NOOP("no connection"),
        QT_TR_NOOP("host not found"),
        QT_TR_NOOP("the proxy's host is not found"),
        QT_TR_NOOP("the proxy answers with HTTP status {d}"),
        QT_TR_NOOP("no answer in time"),
        QT_TR_NOOP("nobody is asked"),
        QT_TR_NOOP("connection closed before the end"),
        QT_TR_NOOP("certificate not trusted: {d}"),
        QT_TR_NOOP("certificate not trusted: it is of another host's name"),
        QT_TR_NOOP("redirected too often"),
        QT_TR_NOOP("redirected to an address of another kind"),
        QT_TR_NOOP("endless headers"),
        QT_TR_NOOP("it is another part than was asked for"),
        QT_TR_NOOP("it is packed, which nobody has asked for"),
        QT_TR_NOOP("its parts are those of something packed"),
        QT_TR_NOOP("its length is not the one that was told before"),
        QT_TR_NOOP("it is larger than such a file can be"),
        QT_TR_NOOP("it gives more than was asked for"),
        QT_TR_NOOP("it is no list of hosts"),
    };
};

static_assert(std::size(Causes::c_Words) ==
              static_cast<std::size_t>(Gateway::FetchProblem::Cause::NoHostList) + 1);

} // namespace

QString CauseText(Gateway::FetchProblem const& p_Problem)
{
    QString const detail = QString::fromStdString(p_Problem.Detail);
    QString cause = FillTemplate(
        Causes::tr(Causes::c_Words[static_cast<std::size_t>(p_Problem.Why)]), {}, detail);
    if (p_Problem.Peer.empty())
        return cause;
    QString const words = p_Problem.Kind == Gateway::FetchProblem::Type::ProxyUnreachable
                              ? Causes::tr("the proxy {s} cannot be reached: {d}")
                              : Causes::tr("redirected to {s}: {d}");
    return FillTemplate(words, QString::fromStdString(p_Problem.Peer), cause);
}

Failure ExplainFetch(Gateway::FetchProblem const& p_Problem)
{
    return {KindOf(p_Problem.Kind), UrlOf(p_Problem), CauseText(p_Problem)};
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
