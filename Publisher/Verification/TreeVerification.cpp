#include "Publisher/Verification/TreeVerification.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Source/ParallelFor.hpp"
#include "Publisher/Tree/ServerTexts.hpp"
#include "Publisher/Verification/ContentCheck.hpp"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace Varnholt::Publisher {

namespace {

class TreeVerification {
public:
    TreeVerification(BuildCatalog const& p_Tree, PublicationObserver* p_Observer,
                     DocumentCheck p_Check)
        : Tree(p_Tree)
        , Observer(p_Observer)
        , Check(std::move(p_Check))
    {
    }

    VerificationSummary Run()
    {
        QString const hosts = ServerLists::HostsPath(Tree.Root());
        QByteArray const list = Read(hosts);
        if (!list.isNull())
            ServerTexts::HostsOf(list, hosts, Summary.Defects);
        QStringList const builds = ServedBuilds();
        for (QString const& build : builds)
            AddFiles(build);
        if (Check.IsOn())
            CheckSignatures(builds);
        CheckFiles();
        return Summary;
    }

    VerificationSummary CheckBuild(QString const& p_Build)
    {
        AddFiles(p_Build);
        CheckFiles();
        return Summary;
    }

private:
    void CheckSignatures(QStringList const& p_Builds)
    {
        QStringList paths{ServerLists::HostsPath(Tree.Root()),
                          Tree.PathOf(QStringLiteral("realmlist.info"))};
        for (QString const& name : ServerTexts::VersionFiles())
            paths += Tree.PathOf(name);
        for (QString const& build : p_Builds)
            paths += Tree.ManifestPath(build);
        for (QString const& path : qAsConst(paths)) {
            if (!QFileInfo::exists(path))
                continue; // what is needed was missed before
            QByteArray const text = DocumentCheck::ReadSignature(path);
            QString const problem = Check.ProblemOf(path, Read(path), text, Summary.Sequence);
            if (!problem.isNull())
                Summary.Defects += path + QStringLiteral(": ") + problem;
            ++Summary.Signatures;
        }
    }

    void CheckFiles()
    {
        qint64 bytes = 0;
        for (PublishedFile const& file : Files)
            bytes += QFileInfo(Tree.PathOf(file.Location)).size();
        if (Observer)
            Observer->PhaseStarted(QStringLiteral("Reading the tree"), bytes);
        auto const read = [this](qint64 p_Bytes) {
            if (Observer)
                Observer->BytesRead(p_Bytes);
        };
        std::vector<QString> problems(Files.size());
        ParallelFor(Files.size(), [&](std::size_t p_Index) {
            PublishedFile const& file = Files[p_Index];
            problems[p_Index] = ProblemOfContent(Tree.PathOf(file.Location), file.Md5, read);
        });
        for (std::size_t i = 0; i < Files.size(); ++i) {
            if (!problems[i].isNull()) {
                Summary.Damaged.insert(Files[i].Md5);
                Summary.Defects +=
                    QStringLiteral("%1 (%2): %3")
                        .arg(Tree.PathOf(Files[i].Location), Files[i].Path, problems[i]);
            }
        }
        Summary.Files = static_cast<int>(Files.size());
        Summary.FilesRead = Summary.Files;
    }

    /// A text file's bytes, null with a defect when it cannot be read.
    QByteArray Read(QString const& p_Path)
    {
        QFile file(p_Path);
        if (!file.open(QIODevice::ReadOnly)) {
            Summary.Defects +=
                QStringLiteral("%1: cannot be read: %2").arg(p_Path, file.errorString());
            return {};
        }
        QByteArray const bytes = file.readAll();
        return bytes.isNull() ? QByteArray("") : bytes;
    }

    QStringList ServedBuilds()
    {
        QStringList builds;
        bool isServed = false;
        for (QString const& name : ServerTexts::VersionFiles()) {
            QString const path = Tree.PathOf(name);
            if (!QFileInfo::exists(path))
                continue;
            isServed = true;
            QByteArray const version = Read(path);
            if (!version.isNull())
                builds += ServerTexts::BuildOf(version, path, Summary.Defects);
        }
        if (!isServed) {
            Summary.Defects +=
                Tree.PathOf(ServerTexts::VersionFiles().first()) + QStringLiteral(": is missing");
        }
        builds.removeAll(QString());
        builds.removeDuplicates();
        return builds;
    }

    void AddFiles(QString const& p_Build)
    {
        Summary.Builds += p_Build;
        try {
            for (PublishedFile const& file : Tree.ReadBuild(p_Build).Files) {
                QString const content = file.Location + file.Md5;
                if (!Known.contains(content))
                    Files.push_back(file);
                Known.insert(content);
            }
        } catch (Failure const& failure) {
            Summary.Defects += QString::fromUtf8(failure.what());
        }
    }

    BuildCatalog const& Tree;
    PublicationObserver* Observer;
    DocumentCheck Check;
    VerificationSummary Summary;
    std::vector<PublishedFile> Files; ///< each content once
    QSet<QString> Known;              ///< what is in `Files`
};

} // namespace

VerificationSummary VerifyTree(BuildCatalog const& p_Tree, PublicationObserver* p_Observer,
                               DocumentCheck const& p_Check)
{
    return TreeVerification(p_Tree, p_Observer, p_Check).Run();
}

VerificationSummary VerifyBuild(BuildCatalog const& p_Tree, QString const& p_Build,
                                PublicationObserver* p_Observer)
{
    return TreeVerification(p_Tree, p_Observer, DocumentCheck({}, {})).CheckBuild(p_Build);
}

} // namespace Varnholt::Publisher
