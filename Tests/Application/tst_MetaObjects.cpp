#include "GameModules/Pelmora/Pelmora.hpp"
#include "GameModules/StandartApplication.hpp"
#include "Launcher/Application/Application.hpp"
#include "Launcher/Application/ApplicationAsyncHttpDownloader.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QMetaMethod>
#include <QtTest>

namespace Varnholt::Launcher {

namespace {

/// The methods that a class adds to its base, by index.
QStringList OwnMethods(QMetaObject const& p_Class)
{
    QStringList methods;
    for (int i = p_Class.methodOffset(); i < p_Class.methodCount(); ++i)
        methods += QString::fromLatin1(p_Class.method(i).methodSignature());
    return methods;
}

QStringList ParameterNames(QMetaObject const& p_Class, char const* p_Signature)
{
    QStringList names;
    for (QByteArray const& name :
         p_Class.method(p_Class.indexOfMethod(p_Signature)).parameterNames())
        names += QString::fromLatin1(name);
    return names;
}

} // namespace

/// Method indices are part of what hosts and queued calls rely on: these orders must not change.
class MetaObjectsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheApplicationHasThreeSignalsAndSixSlots();
    void StandartApplicationAddsThreeSlots();
    void PelmoraAddsNothing();
    void TheDownloaderKeepsItsOrder();
    void ParametersKeepTheirNames();
    void TheErrorTypeIsRegisteredForTheDownloadersSlot();
    void TheRecordIsKnownByTheNameThatTheSignalsSpell();
};

void MetaObjectsTest::TheApplicationHasThreeSignalsAndSixSlots()
{
    QCOMPARE(OwnMethods(Application::staticMetaObject),
             QStringList({"OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)",
                          "OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)",
                          "OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)",
                          "AppInt_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)",
                          "AppInt_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)",
                          "AppInt_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)",
                          "HTTP_GetContent_OnReadyRead()", "HTTP_GetContent_DownloadFinished()",
                          "HTTP_GetContentSize_MedaDataChanged()"}));
}

void MetaObjectsTest::StandartApplicationAddsThreeSlots()
{
    QMetaObject const& meta = StandartApplication::staticMetaObject;
    QCOMPARE(OwnMethods(meta),
             QStringList({"App_OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)",
                          "App_OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)",
                          "App_OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)"}));
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta.superClass(), &Application::staticMetaObject);
}

void MetaObjectsTest::PelmoraAddsNothing()
{
    QCOMPARE(OwnMethods(Pelmora::staticMetaObject), QStringList());
    QCOMPARE(Pelmora::staticMetaObject.superClass(), &StandartApplication::staticMetaObject);
}

void MetaObjectsTest::TheDownloaderKeepsItsOrder()
{
    QMetaObject const& meta = ApplicationAsyncHttpDownloader::staticMetaObject;
    QCOMPARE(OwnMethods(meta),
             QStringList({"CloseThread()",
                          "AsyncOnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)",
                          "AsyncOnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)",
                          "AsyncOnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)",
                          "HTTP_OnError(QNetworkReply::NetworkError)", "HTTP_OnReadyRead()",
                          "HTTP_MedaDataChanged()", "HTTP_OnProgressUpdate(qlonglong,qlonglong)",
                          "HTTP_DownloadFinished()"}));
    for (int i = 0; i < 9; ++i)
        QCOMPARE(meta.method(meta.methodOffset() + i).methodType(),
                 i < 4 ? QMetaMethod::Signal : QMetaMethod::Slot);
    QCOMPARE(meta.superClass(), &QThread::staticMetaObject);
}

void MetaObjectsTest::ParametersKeepTheirNames()
{
    QMetaObject const& downloader = ApplicationAsyncHttpDownloader::staticMetaObject;
    QCOMPARE(ParameterNames(downloader, "HTTP_OnProgressUpdate(qint64,qint64)"),
             QStringList({"p_CurrentBytes", "p_TotalBytes"}));
    QCOMPARE(ParameterNames(downloader, "HTTP_OnError(QNetworkReply::NetworkError)"),
             QStringList("p_Error"));
    for (char const* const signal : {"OnHTTPDownloadProgressUpdate(HTTP_DownloadFileRequest*)",
                                     "OnHTTPDownloadProgressComplete(HTTP_DownloadFileRequest*)",
                                     "OnHTTPDownloadRestarted(HTTP_DownloadFileRequest*)"})
        QCOMPARE(ParameterNames(Application::staticMetaObject, signal), QStringList("p_Request"));
}

void MetaObjectsTest::TheErrorTypeIsRegisteredForTheDownloadersSlot()
{
    QMetaObject const& meta = ApplicationAsyncHttpDownloader::staticMetaObject;
    QMetaMethod const slot =
        meta.method(meta.indexOfSlot("HTTP_OnError(QNetworkReply::NetworkError)"));
    QVERIFY(slot.parameterType(0) != QMetaType::UnknownType);
}

void MetaObjectsTest::TheRecordIsKnownByTheNameThatTheSignalsSpell()
{
    Pelmora const module; // registers it
    QCOMPARE(QMetaType::type("HTTP_DownloadFileRequest*"),
             qMetaTypeId<HTTP_DownloadFileRequest*>());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::MetaObjectsTest)
#include "tst_MetaObjects.moc"
