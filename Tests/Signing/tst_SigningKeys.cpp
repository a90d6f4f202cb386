#include "Signing/KeyFailure.hpp"
#include "Signing/Signature.hpp"
#include "Tests/Signing/Minisign.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using namespace Signing;

class SigningKeysTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void APublicKeyIsOneLineOrAFile();
    void OthersAreNoPublicKey_data();
    void OthersAreNoPublicKey();
    void OnlyTheRightPasswordOpensIt();
    void DamagedFilesAreRefused_data();
    void DamagedFilesAreRefused();
    void MinisignTakesOurKeys_data();
    void MinisignTakesOurKeys();
    void WeTakeKeysOfMinisign_data();
    void WeTakeKeysOfMinisign();

private:
    QString At(QString const& p_Name) const { return Folder->filePath(p_Name); }
    QByteArray FailureOfLoading(QString const& p_File, QByteArray const& p_Password = {}) const;

    std::unique_ptr<QTemporaryDir> Folder;
};

void SigningKeysTest::initTestCase()
{
    QVERIFY2(!Minisign({"-v"}).isEmpty(), "scripts/setup installs minisign");
}

void SigningKeysTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
}

QByteArray SigningKeysTest::FailureOfLoading(QString const& p_File,
                                             QByteArray const& p_Password) const
{
    try {
        SecretKey::Load(p_File, p_Password);
        return "none";
    } catch (KeyFailure const& failure) {
        return failure.what();
    }
}

void SigningKeysTest::APublicKeyIsOneLineOrAFile()
{
    PublicKey const key = SecretKey::Create().Public();
    QCOMPARE(key.ToText().size(), 56);
    QVERIFY(PublicKey::FromText(key.ToText()) == key);
    QVERIFY(PublicKey::FromText(key.ToText() + '\n') == key);
    QVERIFY(PublicKey::FromText(key.ToFileText()) == key);
    QVERIFY(!(SecretKey::Create().Public() == key));
}

void SigningKeysTest::OthersAreNoPublicKey_data()
{
    QByteArray const line = SecretKey::Create().Public().ToText();
    QTest::addColumn<QByteArray>("Text");

    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("too short") << line.left(52);
    QTest::newRow("another algorithm") << 'X' + line.mid(1);
    QTest::newRow("no base64") << '!' + line.mid(1);
    QTest::newRow("two keys") << line + '\n' + line;
    QTest::newRow("no end") << "untrusted comment: " + QByteArray(5000, 'x') + '\n' + line;
}

void SigningKeysTest::OthersAreNoPublicKey()
{
    QFETCH(QByteArray, Text);
    QVERIFY(!PublicKey::FromText(Text));
}

void SigningKeysTest::OnlyTheRightPasswordOpensIt()
{
    SecretKey const key = SecretKey::Create();
    key.Save(At("key"), "secret", SecretKey::Strength::Quick);
    QVERIFY(SecretKey::NeedsPassword(At("key")));
    QVERIFY(SecretKey::Load(At("key"), "secret").Public() == key.Public());
    QCOMPARE(FailureOfLoading(At("key"), "Secret"), QByteArray("the password is wrong"));
    QCOMPARE(FailureOfLoading(At("key")), QByteArray("the password is wrong"));
}

void SigningKeysTest::DamagedFilesAreRefused_data()
{
    QTest::addColumn<int>("Byte"); // of the raw file, 0 the first
    QTest::addColumn<bool>("WithChecksum");
    QTest::addColumn<QByteArray>("Failure");

    QTest::newRow("algorithm") << 0 << true << QByteArray("is no secret key file");
    QTest::newRow("derivation") << 3 << true << QByteArray("is no secret key file");
    QTest::newRow("checksum's algorithm") << 4 << true << QByteArray("is no secret key file");
    QTest::newRow("pair") << 80 << true << QByteArray("is damaged");
    QTest::newRow("pair without a checksum") << 80 << false << QByteArray("is damaged");
    QTest::newRow("checksum") << 157 << true << QByteArray("is damaged");
}

void SigningKeysTest::DamagedFilesAreRefused()
{
    QFETCH(int, Byte);
    QFETCH(bool, WithChecksum);
    QFETCH(QByteArray, Failure);
    SecretKey::Create().Save(At("key"), {});
    QList<QByteArray> lines = ReadFile(At("key")).split('\n');
    QByteArray raw = QByteArray::fromBase64(lines[1]);
    QCOMPARE(raw.size(), 158);
    if (!WithChecksum)
        raw.replace(126, 32, QByteArray(32, 0));
    raw[Byte] = static_cast<char>(raw.at(Byte) ^ 1);
    lines[1] = raw.toBase64();
    QVERIFY(WriteFile(At("damaged"), lines.join('\n')));
    QCOMPARE(FailureOfLoading(At("damaged")), Failure);
}

void SigningKeysTest::MinisignTakesOurKeys_data()
{
    QTest::addColumn<QByteArray>("Password");
    QTest::newRow("with a password") << QByteArray("pass word");
    QTest::newRow("without") << QByteArray();
}

void SigningKeysTest::MinisignTakesOurKeys()
{
    QFETCH(QByteArray, Password);
    SecretKey const key = SecretKey::Create();
    key.Save(At("key"), Password, SecretKey::Strength::Quick);
    QVERIFY(WriteFile(At("text"), "some bytes"));
    TrustedComment comment;
    comment.Channel = "dev";
    comment.Time = QDateTime({2026, 11, 22}, {10, 0}, Qt::UTC);
    Minisign({"-S", "-s", At("key"), "-t", comment.ToText(), "-m", At("text")}, Password + '\n');
    Verification const verified =
        Verify("some bytes", ReadFile(At("text.minisig")), {key.Public()});
    QVERIFY(verified.IsGood());
    QCOMPARE(verified.Comment.ToText(), comment.ToText());
}

void SigningKeysTest::WeTakeKeysOfMinisign_data()
{
    MinisignTakesOurKeys_data();
}

void SigningKeysTest::WeTakeKeysOfMinisign()
{
    QFETCH(QByteArray, Password);
    QStringList arguments{"-G", "-p", At("public"), "-s", At("key")};
    if (Password.isEmpty())
        arguments << "-W";
    Minisign(arguments, Password + '\n' + Password + '\n');
    QCOMPARE(SecretKey::NeedsPassword(At("key")), !Password.isEmpty());
    SecretKey const key = SecretKey::Load(At("key"), Password);
    QVERIFY(PublicKey::FromText(ReadFile(At("public"))) == key.Public());
    QVERIFY(ReadFile(At("public")).contains(key.Public().KeyId().toLatin1()));
}

} // namespace Varnholt::TestSupport

#include "tst_SigningKeys.moc"

VARNHOLT_TEST(Varnholt::TestSupport::SigningKeysTest)
