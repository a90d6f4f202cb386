#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Jobs/JobTable.hpp"

namespace Varnholt::Host {

namespace {

/// Asks the build for its languages, and chooses one of them when that is wanted; fetches no file.
class LocalesJob : public Job {
public:
    using Job::Job;

protected:
    std::optional<Failure> Prepare() override
    {
        if (!Chooses() || !Context.Record.IsInstalled())
            return std::nullopt;
        if (auto failure = GameFailure())
            return failure;
        if (auto failure = FolderCheck::ForWriting(Folder()))
            return failure;
        return LockFolder(Folder());
    }

    void OnBuildKnown() override
    {
        Result.Locales = Context.Module.GetAvailableLocales();
        if (auto const failure = Chooses() ? Choose() : std::nullopt)
            return Fail(*failure);
        Finish();
    }

private:
    bool Chooses() const { return Request.Kind == RunRequest::Type::ChooseLocale; }

    std::optional<Failure> Choose()
    {
        Launcher::StandartApplication& module = Context.Module;
        QStringList tags;
        for (auto const& locale : Result.Locales)
            tags += locale.Tag;
        if (!tags.contains(Request.Argument))
            return Failure{FailureKind::LocaleNotOffered, Request.Argument,
                           tags.join(QStringLiteral(", "))};
        // The lists of what is missing were made for the language before.
        if (Context.Record.IsInstalled() && module.GetAppLocale() != Request.Argument)
            Context.Record.MarkUnfinished();
        module.SetAppLocale(Request.Argument);
        return std::nullopt;
    }
};

} // namespace

JobMaker const MakeLocalesJob = MakeJob<LocalesJob>;

} // namespace Varnholt::Host
