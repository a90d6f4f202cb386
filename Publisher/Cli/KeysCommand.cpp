#include "Publisher/Cli/Commands.hpp"

#include "Publisher/Cli/KeyFiles.hpp"
#include "Publisher/Failure.hpp"
#include "Publisher/Signatures/TreeSigner.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Signing/KeyFailure.hpp"

#include <CLI/CLI.hpp>
#include <QFile>

#include <algorithm>

namespace Varnholt::Publisher {

using Signing::SecretKey;

namespace {

class KeysCommand : public Command {
public:
    explicit KeysCommand(CLI::App& p_Program);

    int Run() const override;

private:
    void Make() const;
    void Show() const;
    void Change() const;
    void Print(Signing::PublicKey const& p_Key) const;
    /// \throws Failure unless exactly these are given of what not all actions take
    void CheckGiven(std::initializer_list<char const*> p_Names) const;

    std::string Action;
    std::string File;
    std::string PasswordFile;
    std::string Old;
    std::string New;
    std::string NewPasswordFile;
    bool WithoutPassword = false;
};

KeysCommand::KeysCommand(CLI::App& p_Program)
    : Command(
          p_Program, "keys", "Make, show and change the keys that sign a tree",
          "Examples:\n"
          "  varnholt-publish keys new game.key\n"
          "  varnholt-publish keys show game.key.pub\n"
          "  varnholt-publish keys change --output /srv/www --old game.key --new next.key\n"
          "\n"
          "new writes the secret key, readable by its owner alone, and beside it the public one\n"
          "with \".pub\" behind the name; both are minisign's. show prints the public key, which\n"
          "players trust. change signs the whole tree with another key, and that key with the\n"
          "old one, so that players who trust the old one follow.\n")
{
    Words.add_option("action", Action, "What to do")
        ->required()
        ->check(CLI::IsMember({"new", "show", "change"}));
    Words.add_option("file", File, "new, show: the key's file")->type_name("FILE");
    Words.add_flag("--no-password", WithoutPassword, "new: whoever has the file can sign");
    Words.add_option("--password-file", PasswordFile,
                     "File whose first line is the key's password (default: the variable "
                     "VARNHOLT_KEY_PASSWORD, or standard input)");
    AddOutput("change: folder of the published tree");
    Words.add_option("--old", Old, "change: the secret key that signs now");
    Words.add_option("--new", New, "change: the secret key that signs from now on");
    Words.add_option("--new-password-file", NewPasswordFile,
                     "change: --password-file of the new key");
    AddJson();
}

int KeysCommand::Run() const
{
    if (Action == "change") {
        CheckGiven({"--output", "--old", "--new"});
        Change();
        return 0;
    }
    CheckGiven({"file"});
    if (Action == "new")
        Make();
    else
        Show();
    return 0;
}

void KeysCommand::CheckGiven(std::initializer_list<char const*> p_Names) const
{
    for (char const* const name : {"file", "--output", "--old", "--new"}) {
        bool const isWanted =
            std::any_of(p_Names.begin(), p_Names.end(),
                        [name](char const* p_Wanted) { return std::string(name) == p_Wanted; });
        if (isWanted != (Words.count(name) > 0)) {
            throw Failure(QStringLiteral("keys %1: %2 %3")
                              .arg(QString::fromStdString(Action), QString::fromUtf8(name),
                                   isWanted ? QStringLiteral("is required")
                                            : QStringLiteral("has no meaning there")),
                          Failure::c_Usage);
        }
    }
}

void KeysCommand::Make() const
{
    QString const name = QString::fromStdString(File);
    QFile other(name + QStringLiteral(".pub"));
    if (other.exists())
        throw Failure(other.fileName() + QStringLiteral(": exists already"));
    QByteArray const password =
        WithoutPassword ? QByteArray()
                        : KeyFiles::NewPassword(name, QString::fromStdString(PasswordFile));
    SecretKey const key = SecretKey::Create();
    try {
        key.Save(name, password);
    } catch (Signing::KeyFailure const& failure) {
        throw Failure(name + QStringLiteral(": ") + QString::fromUtf8(failure.what()));
    }
    QByteArray const text = key.Public().ToFileText();
    if (!other.open(QIODevice::WriteOnly) || other.write(text) != text.size() || !other.flush())
        throw Failure(other.fileName() + QStringLiteral(": cannot be written: ") +
                      other.errorString());
    Print(key.Public());
}

void KeysCommand::Show() const
{
    QString const name = QString::fromStdString(File);
    QFile file(name);
    std::optional<Signing::PublicKey> key;
    if (file.open(QIODevice::ReadOnly))
        key = Signing::PublicKey::FromText(file.readAll());
    Print(key ? *key : KeyFiles::Load(name, QString::fromStdString(PasswordFile)).Public());
}

void KeysCommand::Change() const
{
    QString const output = Output();
    TreeMark(output).CheckIsTree();
    SigningOptions options;
    options.Key = KeyFiles::Load(QString::fromStdString(Old), QString::fromStdString(PasswordFile));
    SecretKey const next =
        KeyFiles::Load(QString::fromStdString(New), QString::fromStdString(NewPasswordFile));
    TreeSigner::ChangeKey(output, options, next);
    Print(next.Public());
}

void KeysCommand::Print(Signing::PublicKey const& p_Key) const
{
    QString const text = QString::fromLatin1(p_Key.ToText());
    Tell(text, {{QStringLiteral("type"), QStringLiteral("key")},
                {QStringLiteral("id"), p_Key.KeyId()},
                {QStringLiteral("key"), text}});
}

} // namespace

std::unique_ptr<Command> MakeKeysCommand(CLI::App& p_Program)
{
    return std::make_unique<KeysCommand>(p_Program);
}

} // namespace Varnholt::Publisher
