#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Jobs/RunPhase.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSet>
#include <QtTest>

namespace Varnholt::Host {

/// Bytes and phases.
class HostFiguresTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BytesAreCountedInPowersOf1024_data();
    void BytesAreCountedInPowersOf1024();

    void EveryPhaseHasItsOwnWords();
    void OnlyTheDownloadPhasesCountBytes();
};

void HostFiguresTest::BytesAreCountedInPowersOf1024_data()
{
    QTest::addColumn<quint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << quint64(0) << "0 bytes";
    QTest::newRow("below a kibibyte") << quint64(1023) << "1023 bytes";
    QTest::newRow("a kibibyte") << quint64(1024) << "1.0 KiB";
    QTest::newRow("a half more") << quint64(1536) << "1.5 KiB";
    QTest::newRow("mebibytes") << quint64(12) * 1024 * 1024 << "12.0 MiB";
    QTest::newRow("more than 32 bits") << (quint64(25) << 30) << "25.0 GiB";
}

void HostFiguresTest::BytesAreCountedInPowersOf1024()
{
    QFETCH(quint64, bytes);
    QTEST(ByteText(bytes), "text");
}

void HostFiguresTest::EveryPhaseHasItsOwnWords()
{
    QSet<QString> words;
    int count = 0;
    for (int i = static_cast<int>(RunPhase::Idle); i <= static_cast<int>(RunPhase::Failed); ++i) {
        words += PhaseText(static_cast<RunPhase>(i));
        ++count;
    }
    QCOMPARE(words.size(), count);
    QVERIFY(!words.contains(QString()));
}

void HostFiguresTest::OnlyTheDownloadPhasesCountBytes()
{
    for (int i = static_cast<int>(RunPhase::Idle); i <= static_cast<int>(RunPhase::Failed); ++i) {
        auto const phase = static_cast<RunPhase>(i);
        QCOMPARE(IsDownloading(phase),
                 phase == RunPhase::DownloadingBase || phase == RunPhase::DownloadingStreamed);
    }
}

} // namespace Varnholt::Host

VARNHOLT_TEST(Varnholt::Host::HostFiguresTest)
#include "tst_HostFigures.moc"
