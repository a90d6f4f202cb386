#include "Signing/Signature.hpp"
#include "Tests/Signing/Minisign.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using namespace Signing;
using Reason = Verification::Reason;

class SignatureTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void WhatWasSignedIsGood();
    void OfNothingThereIsOneToo();
    void AnyChangeIsNoticed_data();
    void AnyChangeIsNoticed();
    void EveryKeyOfAListCounts();
    void AnotherKeyOfTheSameNameIsNotTheSame();
    void WhatIsNoSignatureFileIsMalformed_data();
    void WhatIsNoSignatureFileIsMalformed();
    void MinisignFindsItGood();
    void OneOfMinisignsOlderWayIsMalformed();

private:
    SecretKey const Key = SecretKey::Create();
    TrustedComment Comment;
    QByteArray const Bytes = "some\nbytes";
    QByteArray Signature;
};

namespace {

QByteArray Changed(QByteArray const& p_Text, int p_Line, int p_Byte)
{
    QList<QByteArray> lines = p_Text.split('\n');
    char& byte = lines[p_Line].data()[p_Byte];
    byte = byte == 'A' ? 'B' : 'A';
    return lines.join('\n');
}

} // namespace

void SignatureTest::initTestCase()
{
    Comment.Game = "pelmora";
    Comment.Channel = "live";
    Comment.Time = QDateTime({2026, 11, 22}, {10, 0}, Qt::UTC);
    Signature = Sign(Bytes, Key, Comment);
}

void SignatureTest::WhatWasSignedIsGood()
{
    Verification const verified = Verify(Bytes, Signature, {Key.Public()});
    QVERIFY(verified.IsGood());
    QCOMPARE(verified.Comment.ToText(), Comment.ToText());
    QCOMPARE(verified.KeyId, Key.Public().KeyId());
}

void SignatureTest::OfNothingThereIsOneToo()
{
    QByteArray const signature = Sign({}, Key, Comment);
    QVERIFY(Verify({}, signature, {Key.Public()}).IsGood());
    QCOMPARE(Verify("x", signature, {Key.Public()}).Outcome, Reason::WrongSignature);
}

void SignatureTest::AnyChangeIsNoticed_data()
{
    QTest::addColumn<QByteArray>("Given");
    QTest::addColumn<QByteArray>("With");

    AddRow("bytes", QByteArray("some\nbytez"), Signature);
    AddRow("more bytes", Bytes + '\n', Signature);
    AddRow("signature", Bytes, Changed(Signature, 1, 40));
    AddRow("comment", Bytes, QByteArray(Signature).replace("sequence=0", "sequence=1"));
    AddRow("comment's signature", Bytes, Changed(Signature, 3, 40));
}

void SignatureTest::AnyChangeIsNoticed()
{
    QFETCH(QByteArray, Given);
    QFETCH(QByteArray, With);
    Verification const verified = Verify(Given, With, {Key.Public()});
    QCOMPARE(verified.Outcome, Reason::WrongSignature);
    QVERIFY(verified.Comment.Game.isEmpty());
}

void SignatureTest::EveryKeyOfAListCounts()
{
    PublicKey const other = SecretKey::Create().Public();
    QVERIFY(Verify(Bytes, Signature, {other, Key.Public()}).IsGood());
    QCOMPARE(Verify(Bytes, Signature, {other}).Outcome, Reason::UnknownKey);
    QCOMPARE(Verify(Bytes, Signature, {}).Outcome, Reason::UnknownKey);
}

void SignatureTest::AnotherKeyOfTheSameNameIsNotTheSame()
{
    PublicKey const other(Key.Public().RawId(), SecretKey::Create().Public().RawKey());
    QCOMPARE(Verify(Bytes, Signature, {other}).Outcome, Reason::WrongSignature);
    QVERIFY(Verify(Bytes, Signature, {other, Key.Public()}).IsGood());
}

void SignatureTest::WhatIsNoSignatureFileIsMalformed_data()
{
    QList<QByteArray> const lines = Signature.split('\n');
    auto const joined = [&lines](QByteArray const& p_Second, QByteArray const& p_Last) {
        return QList<QByteArray>{lines[0], p_Second, lines[2], p_Last}.join('\n');
    };
    QTest::addColumn<QByteArray>("Text");
    AddRow("nothing", QByteArray());
    AddRow("a page", QByteArray("<html>\n<body>\nNot found\n</html>\n"));
    AddRow("cut short", Signature.left(Signature.size() / 2));
    AddRow("without the last line", lines.mid(0, 3).join('\n') + '\n');
    AddRow("cut in its last line", joined(lines[1], lines[3].left(40)));
    AddRow("no base64", joined('!' + lines[1].mid(1), lines[3]));
    AddRow("more lines", Signature + "more\n");
    AddRow("endless",
           "untrusted comment: " + QByteArray(4096, 'x') + Signature.mid(Signature.indexOf('\n')));
    AddRow("a comment of others", QByteArray(Signature).replace(Comment.ToText(), "timestamp:1"));
}

void SignatureTest::WhatIsNoSignatureFileIsMalformed()
{
    QFETCH(QByteArray, Text);
    QCOMPARE(Verify(Bytes, Text, {Key.Public()}).Outcome, Reason::Malformed);
}

void SignatureTest::MinisignFindsItGood()
{
    QTemporaryDir const folder;
    QString const file = folder.filePath("text");
    QVERIFY(WriteFile(file, Bytes));
    QVERIFY(WriteFile(file + ".minisig", Signature));
    QStringList const arguments{"-V", "-m", file, "-P", Key.Public().ToText()};
    QVERIFY(Minisign(arguments).contains("Trusted comment: " + Comment.ToText()));
    QVERIFY(WriteFile(file, "others"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Signature verification failed"));
    QVERIFY(Minisign(arguments).isEmpty());
}

void SignatureTest::OneOfMinisignsOlderWayIsMalformed()
{
    QTemporaryDir const folder;
    QString const file = folder.filePath("text");
    QVERIFY(WriteFile(file, Bytes));
    Key.Save(folder.filePath("key"), {});
    Minisign({"-S", "-l", "-s", folder.filePath("key"), "-t", Comment.ToText(), "-m", file});
    QByteArray const signature = ReadFile(file + ".minisig");
    QVERIFY(QByteArray::fromBase64(signature.split('\n')[1]).startsWith("Ed"));
    QCOMPARE(Verify(Bytes, signature, {Key.Public()}).Outcome, Reason::Malformed);
}

} // namespace Varnholt::TestSupport

#include "tst_Signature.moc"

VARNHOLT_TEST(Varnholt::TestSupport::SignatureTest)
