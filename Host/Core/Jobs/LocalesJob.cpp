#include "Host/Core/Jobs/LocalesJob.hpp"

#include "Host/Core/Folder/FolderCheck.hpp"

namespace Varnholt::Host {

void ListLocalesJob::OnBuildKnown()
{
    Result.Locales = Context.Module.GetAvailableLocales();
    Finish();
}

std::optional<Failure> ChooseLocaleJob::Prepare()
{
    if (!Context.Record.IsInstalled())
        return std::nullopt;
    if (auto failure = GameFailure())
        return failure;
    if (auto failure = FolderCheck::ForWriting(Folder()))
        return failure;
    return LockFolder(Folder());
}

void ChooseLocaleJob::OnBuildKnown()
{
    Launcher::StandartApplication& module = Context.Module;
    QStringList tags;
    for (auto const& locale : module.GetAvailableLocales())
        tags += locale.Tag;
    if (!tags.contains(Request.Argument)) {
        Result.Locales = module.GetAvailableLocales();
        return Fail(
            {FailureKind::LocaleNotOffered, Request.Argument, tags.join(QStringLiteral(", "))});
    }
    // The lists of what is missing were made for the language before.
    if (Context.Record.IsInstalled() && module.GetAppLocale() != Request.Argument)
        Context.Record.MarkUnfinished();
    module.SetAppLocale(Request.Argument);
    ListLocalesJob::OnBuildKnown();
}

} // namespace Varnholt::Host
