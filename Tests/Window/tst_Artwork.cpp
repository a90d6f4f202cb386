#include "Host/Window/Style/Artwork.hpp"
#include "Tests/Support/TestMain.hpp"

namespace Varnholt::TestSupport {

using Host::Artwork;

class ArtworkTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ThePlacementNamesTheSideThatStays_data();
    void ThePlacementNamesTheSideThatStays();
    void TheGroundIsWhereThePictureEnds();
};

void ArtworkTest::ThePlacementNamesTheSideThatStays_data()
{
    QTest::addColumn<QSize>("Picture");
    QTest::addColumn<QSize>("Page");
    QTest::addColumn<QString>("Placement");
    QTest::addColumn<QRect>("Place");
    QSize const wide(200, 100);
    AddRow("top right", wide, QSize(100, 100), QString("top right"), QRect(-100, 0, 200, 100));
    AddRow("left", wide, QSize(100, 100), QString("left"), QRect(0, 0, 200, 100));
    AddRow("nothing", wide, QSize(100, 100), QString(), QRect(-50, 0, 200, 100));
    AddRow("bottom", wide, QSize(200, 50), QString("center bottom"), QRect(0, -50, 200, 100));
    AddRow("smaller page", wide, QSize(100, 25), QString("Top"), QRect(0, 0, 100, 50));
    AddRow("larger page", wide, QSize(1000, 500), QString("top right"), QRect(680, 0, 320, 160));
    AddRow("no page", wide, QSize(0, 0), QString("top"), QRect());
}

void ArtworkTest::ThePlacementNamesTheSideThatStays()
{
    QFETCH(QSize, Picture);
    QFETCH(QSize, Page);
    QFETCH(QString, Placement);
    QTEST(Artwork::Place(Picture, Page, Placement), "Place");
}

void ArtworkTest::TheGroundIsWhereThePictureEnds()
{
    QImage picture(100, 50, QImage::Format_RGB32);
    picture.fill(Qt::red);
    Artwork artwork(picture, "top right", QColor("#09111C"));
    QImage const page = artwork.For({1000, 500}, 1).toImage();
    QCOMPARE(page.pixelColor(10, 490), QColor("#09111C"));
    QCOMPARE(page.pixelColor(990, 5), QColor(Qt::red));
    QCOMPARE(artwork.For({100, 50}, 2).size(), QSize(200, 100));
    QCOMPARE(artwork.For({200, 100}, 1).devicePixelRatio(), 1.0);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::ArtworkTest)
#include "tst_Artwork.moc"
