#include "Host/Cli/Presenter.hpp"

#include "Host/Core/Session/MessageLog.hpp"

namespace Varnholt::Host {

void Presenter::ShowNotice(QString const& p_Text)
{
    MessageLog::Write(QStringLiteral("notice: ") + p_Text);
    WriteNotice(p_Text);
}

void Presenter::ShowFailure(Failure const& p_Failure)
{
    MessageLog::Write(QStringLiteral("%1: %2; %3")
                          .arg(p_Failure.Identifier(), p_Failure.Sentence(), p_Failure.Remedy()));
    WriteFailure(p_Failure);
}

} // namespace Varnholt::Host
