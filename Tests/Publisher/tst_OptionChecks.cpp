#include "Publisher/Publication/OptionChecks.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Publisher {

using TestSupport::AddRow;
using TestSupport::CaughtFailure;
using TestSupport::FailureOf;

namespace {

PublishOptions Good()
{
    PublishOptions options;
    options.Source = "source";
    options.Output = "output";
    options.Build.Id = "18414";
    return options;
}

CaughtFailure Check(PublishOptions const& p_Options)
{
    return FailureOf([&] { OptionChecks::Check(p_Options); });
}

} // namespace

class OptionChecksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PartsOfAddressesNeedNoEscaping_data();
    void PartsOfAddressesNeedNoEscaping();
    void TakesHostNames_data();
    void TakesHostNames();
    void RefusesWhatIsNoHostName_data();
    void RefusesWhatIsNoHostName();
    void OneBadHostOfSeveralIsRefused();
    void AServerIsGivenOnce_data();
    void AServerIsGivenOnce();
    void TheRealmListIsAServer_data();
    void TheRealmListIsAServer();
};

void OptionChecksTest::PartsOfAddressesNeedNoEscaping_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("good");
    for (char const* const value : {"18414", "5.4.8_x-1", "a", "-a", "A.b"})
        AddRow(value, QString(value), true);
    for (char const* const value :
         {"", ".", "..", ".a", "a/b", "a b", "a?", "a#", "a%20", "a\\b", "a\n", "../x"})
        AddRow(qPrintable(QString("bad: %1").arg(value)), QString(value), false);
    AddRow("bad: accent", QString::fromUtf8("é"), false);
}

void OptionChecksTest::PartsOfAddressesNeedNoEscaping()
{
    QFETCH(QString, value);
    QFETCH(bool, good);
    PublishOptions build = Good();
    build.Build.Id = value;
    PublishOptions app = Good();
    app.AppId = value;
    for (auto const& [failure, option] :
         {std::pair(Check(build), "--build"), std::pair(Check(app), "--app-id")}) {
        QCOMPARE(failure.Sentence.isNull(), good);
        if (good)
            continue;
        QVERIFY(failure.Sentence.startsWith(QString("%1 \"%2\": ").arg(option, value)));
        QCOMPARE(failure.ExitStatus, Failure::c_Usage);
    }
}

void OptionChecksTest::TakesHostNames_data()
{
    QTest::addColumn<QString>("host");
    for (char const* const host :
         {"cdn1.example.net", "cdn1.example.net:8080", "127.0.0.1:80", "localhost", "[::1]",
          "[2001:db8::1]:65535", "a_b-c", "1a.example", "_a"})
        AddRow(host, QString(host));
}

void OptionChecksTest::TakesHostNames()
{
    QFETCH(QString, host);
    PublishOptions options = Good();
    options.Hosts = QStringList(host);
    QCOMPARE(Check(options).Sentence, QString());
}

void OptionChecksTest::RefusesWhatIsNoHostName_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("cause");
    AddRow("nothing", "", "a host name is empty");
    AddRow("scheme", "http://a.example", "give the host name without a scheme");
    AddRow("path", "a.example/files", "a host name holds no slash");
    AddRow("final slash", "a.example/", "a host name holds no slash");
    AddRow("blank inside", "a b", "a host name holds no blank");
    AddRow("blank in front", " a", "a host name holds no blank");
    AddRow("blank behind", "a ", "a host name holds no blank");
    AddRow("line end", "a\n", "a host name holds no blank");
    AddRow("tab", "a\tb", "a host name holds no blank");
    QString const other = "is not a host name with or without a port";
    for (char const* const host :
         {"a:0", "a:00080", "a..b", ".a", "a.", "-a", "a-", "a.-b", "1.2.3", "1.2.3.256", "[1]",
          "[::1", "[::g]", "a:1:2", "[a.example]"})
        AddRow(host, host, other);
    AddRow("a long label", QString(64, 'a'), other);
    AddRow("a long name", QString("a.").repeated(127) + "a", other);
    AddRow("no port", "a:", other);
    AddRow("word as port", "a:http", other);
    AddRow("port too high", "a:65536", other);
    AddRow("address without brackets", "::1", other);
    AddRow("user", "user@a", other);
    AddRow("accent", QString::fromUtf8("é.example"), other);
}

void OptionChecksTest::RefusesWhatIsNoHostName()
{
    QFETCH(QString, host);
    QFETCH(QString, cause);
    PublishOptions options = Good();
    options.Hosts = QStringList(host);
    CaughtFailure const failure = Check(options);
    QCOMPARE(failure.Sentence, QString("--hosts \"%1\": %2").arg(host, cause));
    QCOMPARE(failure.ExitStatus, Failure::c_Usage);
}

void OptionChecksTest::OneBadHostOfSeveralIsRefused()
{
    PublishOptions options = Good();
    options.Hosts = QStringList({"a", "b", "", "c"});
    QCOMPARE(Check(options).Sentence, QString("--hosts \"\": a host name is empty"));
}

void OptionChecksTest::AServerIsGivenOnce_data()
{
    QTest::addColumn<QStringList>("hosts");
    QTest::addColumn<QString>("sentence");
    AddRow("the same", QStringList({"a", "b", "a"}), "--hosts \"a\": is given twice");
    AddRow("in another case", QStringList({"a", "A"}), "--hosts \"A\": is given twice");
    AddRow("with its port", QStringList({"a", "a:80"}), "--hosts \"a:80\": is given twice");
    AddRow("another port", QStringList({"a", "a:8080"}), QString());
}

void OptionChecksTest::AServerIsGivenOnce()
{
    QFETCH(QStringList, hosts);
    QFETCH(QString, sentence);
    PublishOptions options = Good();
    options.Hosts = hosts;
    QCOMPARE(Check(options).Sentence, sentence);
}

void OptionChecksTest::TheRealmListIsAServer_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("good");
    for (char const* const address : {"logon.example.net", "logon.example.net:3724"})
        AddRow(address, QString(address), true);
    for (char const* const address : {"", "a b", "a\"b", "a\nb", "a\n", "a\rb", "a:0", "a,b"})
        AddRow(qPrintable(QString("bad: %1").arg(address)), QString(address), false);
    AddRow("NUL", QString("a") + QChar(QChar::Null), false);
    AddRow("line separator", QString("a") + QChar(QChar::LineSeparator), false);
}

void OptionChecksTest::TheRealmListIsAServer()
{
    QFETCH(QString, address);
    QFETCH(bool, good);
    PublishOptions options = Good();
    options.RealmListAddress = address;
    CaughtFailure const failure = Check(options);
    QCOMPARE(failure.Sentence.isNull(), good);
    QVERIFY(good || failure.Sentence.startsWith("--realmlist \""));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::OptionChecksTest)
#include "tst_OptionChecks.moc"
