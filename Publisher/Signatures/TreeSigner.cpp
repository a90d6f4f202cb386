#include "Publisher/Signatures/TreeSigner.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/ReadFile.hpp"
#include "Publisher/Tree/PublishedBuild.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace Varnholt::Publisher {

using Signing::TrustedComment;
using Role = TrustedComment::Role;

namespace {

QList<Signing::PublicKey> KeysOf(SigningOptions const& p_Options)
{
    QList<Signing::PublicKey> keys;
    if (p_Options.Key)
        keys += p_Options.Key->Public();
    return keys;
}

bool IsAmong(std::vector<TreeText> const& p_Texts, QString const& p_Target)
{
    return std::any_of(p_Texts.begin(), p_Texts.end(),
                       [&](TreeText const& p_Text) { return p_Text.Target == p_Target; });
}

std::vector<TreeText> Without(std::vector<TreeText> p_Texts, std::vector<TreeText> const& p_Others)
{
    p_Texts.erase(
        std::remove_if(p_Texts.begin(), p_Texts.end(),
                       [&](TreeText const& p_Text) { return IsAmong(p_Others, p_Text.Target); }),
        p_Texts.end());
    return p_Texts;
}

} // namespace

TreeSigner::TreeSigner(QString const& p_Output, QString const& p_AppId,
                       SigningOptions const& p_Options)
    : Output(p_Output)
    , Catalog(p_Output, p_AppId)
    , Options(p_Options)
    , AppId(p_AppId)
    , Record(p_Output)
    , Check(KeysOf(p_Options), p_AppId)
    , Now(QDateTime::fromSecsSinceEpoch(QDateTime::currentSecsSinceEpoch(), Qt::UTC))
{
    Record.CheckMayChange(Options);
}

bool TreeSigner::IsComplete() const
{
    std::vector<TreeText> const current = Current();
    auto const isGood = [this](TreeText const& p_Text) { return ForgeryOf(p_Text).isNull(); };
    return !Options.Key || std::all_of(current.begin(), current.end(), isGood);
}

void TreeSigner::Commit(TreeTransaction& p_Tree, std::vector<TreeText> const& p_Change)
{
    if (!Options.Key) {
        CommitUnsigned(p_Tree, p_Change);
        return;
    }
    if (AppId.isEmpty() && !Record.IsSigned()) {
        throw Failure(Output + QStringLiteral(": is not signed yet: \"varnholt-publish sign\" "
                                              "begins with it"));
    }
    std::vector<TreeText> const left = Without(Current(), p_Change);
    std::vector<TreeText> all = left;
    all.insert(all.end(), p_Change.begin(), p_Change.end());
    QStringList const onOffer = BuildsOnOffer(all);
    std::vector<TreeText> const manifests = Without(Manifests(onOffer), p_Change);
    CheckSigned(left);
    CheckSigned(manifests);
    all.insert(all.end(), manifests.begin(), manifests.end());
    LearnPlatforms(all, onOffer);
    Begin(p_Tree);
    for (TreeText const& text : left)
        AddSignature(p_Tree, text);
    for (TreeText const& text : p_Change) {
        AddSignature(p_Tree, text);
        p_Tree.AddText(text.Content, text.Target);
    }
    p_Tree.Commit();
}

void TreeSigner::CommitUnsigned(TreeTransaction& p_Tree,
                                std::vector<TreeText> const& p_Change) const
{
    for (TreeText const& text : p_Change)
        p_Tree.AddText(text.Content, text.Target);
    p_Tree.Commit();
    // What lies beside the documents is of earlier ones.
    for (TreeText const& text : p_Change)
        QFile::remove(DocumentCheck::SignatureOf(text.Target));
}

void TreeSigner::CommitAll(TreeTransaction& p_Tree)
{
    std::vector<TreeText> const current = Current();
    std::vector<TreeText> const manifests = Manifests(Catalog.Builds());
    LearnPlatforms(manifests, BuildsOnOffer(current));
    Begin(p_Tree);
    for (TreeText const& text : manifests) {
        if (!ForgeryOf(text).isNull())
            AddSignature(p_Tree, text);
    }
    for (TreeText const& text : current)
        AddSignature(p_Tree, text);
    p_Tree.Commit();
}

void TreeSigner::ChangeKey(QString const& p_Output, SigningOptions const& p_Old,
                           Signing::SecretKey const& p_New)
{
    TreeTransaction tree(p_Output);
    QDir const root(p_Output);
    for (QString const& name : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (root.exists(name + QStringLiteral("/builds")))
            TreeSigner(p_Output, name, p_Old).AddKeyChange(tree, p_New);
    }
    tree.Commit();
}

void TreeSigner::AddKeyChange(TreeTransaction& p_Tree, Signing::SecretKey const& p_New)
{
    std::vector<TreeText> const current = Current();
    std::vector<TreeText> const manifests = Manifests(Catalog.Builds());
    CheckSigned(current);
    CheckSigned(manifests);
    LearnPlatforms(manifests, BuildsOnOffer(current));
    Record.SetKey(p_New.Public());
    Begin(p_Tree);
    // First of all, so that whoever meets the new key's first signature finds out about it.
    TreeText const key = {Catalog.Folder() + QStringLiteral("/trust-key"),
                          p_New.Public().ToText() + '\n'};
    AddSignature(p_Tree, key);
    p_Tree.AddText(key.Content, key.Target);
    Options.Key = p_New;
    for (TreeText const& text : manifests)
        AddSignature(p_Tree, text);
    for (TreeText const& text : current)
        AddSignature(p_Tree, text);
}

void TreeSigner::Begin(TreeTransaction& p_Tree)
{
    if (!Record.IsSigned())
        Record.SetKey(Options.Key->Public());
    Record.SetSequence(Record.Sequence() + 1);
    p_Tree.AddText(Record.Text(), Record.Path());
}

/// What says what is current, as it is in the tree; the live channel's version file last.
std::vector<TreeText> TreeSigner::Current() const
{
    QStringList paths{ServerLists::HostsPath(Output)};
    if (!AppId.isEmpty()) {
        paths += {ServerLists::RealmListPath(Output, AppId), Catalog.VersionPath(true),
                  Catalog.VersionPath(false)};
    }
    std::vector<TreeText> texts;
    for (QString const& path : qAsConst(paths)) {
        if (QFileInfo::exists(path))
            texts.push_back({path, ReadFile(path)});
    }
    return texts;
}

std::vector<TreeText> TreeSigner::Manifests(QStringList const& p_Builds) const
{
    std::vector<TreeText> texts;
    for (QString const& build : p_Builds) {
        if (Catalog.Has(build))
            texts.push_back({Catalog.ManifestPath(build), ReadFile(Catalog.ManifestPath(build))});
    }
    return texts;
}

QStringList TreeSigner::BuildsOnOffer(std::vector<TreeText> const& p_Texts) const
{
    QStringList builds;
    for (TreeText const& text : p_Texts) {
        TrustedComment const comment = DocumentCheck::CommentOf(text.Target, text.Content, AppId);
        if (comment.Document == Role::Version)
            builds += comment.Build;
    }
    builds.removeDuplicates();
    return builds;
}

/// \param p_OnOffer what belongs to no build is of the last one's platform
void TreeSigner::LearnPlatforms(std::vector<TreeText> const& p_Texts, QStringList const& p_OnOffer)
{
    for (TreeText const& text : p_Texts) {
        TrustedComment const comment = DocumentCheck::CommentOf(text.Target, text.Content, AppId);
        if (comment.Document == Role::Manifest)
            Platforms[comment.Build] = PublishedBuild::Parse(text.Content, text.Target).Platform;
    }
    if (!p_OnOffer.isEmpty())
        Platforms[QString()] = Platforms[p_OnOffer.last()];
}

QString TreeSigner::ForgeryOf(TreeText const& p_Text) const
{
    return Check.ForgeryOf(p_Text.Target, p_Text.Content,
                           DocumentCheck::ReadSignature(p_Text.Target));
}

void TreeSigner::CheckSigned(std::vector<TreeText> const& p_Texts) const
{
    for (TreeText const& text : p_Texts) {
        QString const forgery = ForgeryOf(text);
        if (!forgery.isNull()) {
            throw Failure(
                QStringLiteral("%1: %2: look why, then let \"varnholt-publish sign\" sign "
                               "what the tree holds")
                    .arg(text.Target, forgery));
        }
    }
}

void TreeSigner::AddSignature(TreeTransaction& p_Tree, TreeText const& p_Text)
{
    TrustedComment comment = DocumentCheck::CommentOf(p_Text.Target, p_Text.Content, AppId);
    // A build stays what it is: that players get a newer one is the version file's affair. A list
    // of hosts is of no platform.
    bool const isCurrent = comment.Document != Role::Manifest && comment.Document != Role::Key;
    if (comment.Document != Role::Hosts)
        comment.Platform = Platforms[comment.Build];
    comment.Sequence = Record.Sequence();
    comment.Time = Now;
    if (isCurrent && Options.Days)
        comment.Expires = Now.addDays(*Options.Days);
    p_Tree.AddTextWithNext(Signing::Sign(p_Text.Content, *Options.Key, comment),
                           DocumentCheck::SignatureOf(p_Text.Target));
    ++Signatures;
}

} // namespace Varnholt::Publisher
