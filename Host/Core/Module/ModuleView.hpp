#pragma once

#include "GameModules/StandartApplication.hpp"

#include <QString>

#include <cstddef>
#include <optional>
#include <utility>

namespace Varnholt::Host {

/// What the host reads of the module's object beside the interface, and the few things that it does
/// to it: here and nowhere else. Module thread.
class ModuleView {
public:
    using Entry = Launcher::ApplicationManifestFileEntry;
    using Entries = Launcher::StandartApplication::Entries;

    /// The list that is being fetched, as it stands.
    struct Download {
        std::size_t Index = 0; ///< of the current file; `Count` behind the last
        std::size_t Count = 0;
        QString File;            ///< the current one's path; empty behind the last
        QString Location;        ///< of the current one
        quint64 BytesOnDisk = 0; ///< of the current one
        quint64 BytesTotal = 0;  ///< of the list
    };
    /// Tells one list of a run from another, and what it is used for. Cheap: texts are shared.
    struct ListMark {
        std::size_t Count = 0;
        bool IsBase = false;
        bool AsksSizes = false;
        QString First;
        QString Latest;

        bool operator==(ListMark const& p_Other) const
        {
            return Count == p_Other.Count && IsBase == p_Other.IsBase &&
                   AsksSizes == p_Other.AsksSizes && First == p_Other.First &&
                   Latest == p_Other.Latest;
        }
    };

    explicit ModuleView(Launcher::StandartApplication& p_Module)
        : Module(p_Module)
    {
    }

    bool IsStartingUp() const;
    /// One of `ApplicationUISetting::ModeValue`.
    qint32 Mode() const;
    bool ComparesBase() const;
    bool FetchesBase() const;
    /// The files of the list that have not been fetched, the current one first.
    Entries Remaining() const;
    /// The whole list, the files that were fetched too.
    Entries Listed() const;
    /// The one that is being fetched, or could not be begun.
    std::optional<Entry> Current() const;
    Download Progress() const;
    /// Locations of the list's files from p_From to before p_To.
    std::vector<QString> Locations(std::size_t p_From, std::size_t p_To) const;
    /// None as long as no server may be asked for the list.
    std::optional<ListMark> Mark() const;
    quint32 SizesAnswered() const { return Module.SizeRepliesReceived; }
    /// Number, from 1, of the file that is compared.
    std::size_t ComparedFile() const;
    bool HasTransfer() const { return Module.CurrentDownload != nullptr; }
    /// Whether the module waits for an answer of a server.
    bool AwaitsReply() const;
    /// The installation's, as the module has it; ends in "/".
    QString Folder() const;
    QString Locale() const { return Module.GetAppLocale(); }
    /// Whether a comparison trusts no earlier one.
    bool IsFirstBuild() const { return Module.IsFirstManifestBuild; }
    quint32 Restarts() const { return Module.DownloadRetryCount; }

    /// The module has one budget of restarts for all files.
    void RenewRestarts() { Module.DownloadRetryCount = 0; }
    /// Where `IsGameRunning` looks; otherwise the module learns of it at the start of a run.
    void SetFolder(QString const& p_Folder);
    /// Stops the transfer in flight; between two files there is none.
    void StopTransfer();
    /// How many closures are queued for the application thread.
    std::size_t Queued() const;
    /// Runs the first so many; what these closures queue is left for the next call, so that the
    /// thread's events get their turn.
    void RunQueue(std::size_t p_Count);
    /// Throws the queue away: left from a run that was stopped, it would begin that anew.
    void DiscardQueue();
    /// Ends what the module is asking for: what still hangs must not answer into the next run, nor
    /// keep it from being over.
    void AbandonReplies();

private:
    std::size_t Done() const;

    Launcher::StandartApplication& Module;
};

} // namespace Varnholt::Host
