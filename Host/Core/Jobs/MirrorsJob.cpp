#include "Host/Core/Jobs/MirrorsJob.hpp"

#include <QCoreApplication>
#include <algorithm>

namespace Varnholt::Host {

void MirrorsJob::OnBuildKnown()
{
    Settle([this] { AskMirrors(); });
}

void MirrorsJob::AskMirrors()
{
    // Of an empty file there is no piece; whether one is empty, its digest tells.
    QString const empty = QStringLiteral("D41D8CD98F00B204E9800998ECF8427E");
    auto const& files = Context.Module.Manifest.Files;
    auto const file = std::find_if(files.begin(), files.end(), [&](auto const& p_Entry) {
        return p_Entry.Md5 != empty &&
               !p_Entry.Has(Launcher::ApplicationManifestFileEntry::DefaultServerOnly);
    });
    Mirrors = std::make_unique<MirrorCheck>(
        Context.Door, Context.Door.PathOf(ManifestFile(Context.Module.RemoteBuild)),
        file == files.end() ? std::string() : Context.Door.PathOf(file->Location));
    connect(Mirrors.get(), &MirrorCheck::Finished, this, &MirrorsJob::OnMirrorsAsked,
            Qt::QueuedConnection);
    Mirrors->Begin();
}

void MirrorsJob::OnMirrorsAsked()
{
    if (IsOver())
        return;
    Result.Mirrors = Mirrors->Reports();
    QStringList wrong;
    for (MirrorReport const& report : Result.Mirrors)
        if (!report.IsInOrder())
            wrong += report.Host;
    if (wrong.isEmpty())
        return Finish();
    Fail({FailureKind::MirrorsWrong,
          QCoreApplication::translate("Varnholt::Host::MirrorsJob", "%1 of %2")
              .arg(wrong.size())
              .arg(Result.Mirrors.size()),
          wrong.join(QStringLiteral(", "))});
}

RunPhase MirrorsJob::Phase() const
{
    return Mirrors ? RunPhase::AskingMirrors : RunPhase::Connecting;
}

} // namespace Varnholt::Host
