#include "Tests/Screen/Screen.hpp"

#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QtEndian>
#include <QtTest>

namespace Varnholt::TestSupport {

Screen::Screen(int p_Width, int p_Height)
{
    Server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    Server.start("Xvfb", {"-displayfd", "1", "-noreset", "-nocursor", "-nolisten", "tcp", "-fbdir",
                          Folder.path(), "-screen", "0",
                          QStringLiteral("%1x%2x24").arg(p_Width).arg(p_Height)});
    while (!Server.canReadLine() && WhyNot.isEmpty())
        if (!Server.waitForReadyRead(TestHost::c_Timeout))
            WhyNot = QStringLiteral("no X server: ") + Server.errorString();
    Name = ':' + QString::fromLatin1(Server.readLine().trimmed());
}

Screen::~Screen()
{
    Server.terminate();
    Server.waitForFinished();
}

QString Screen::Do(QStringList const& p_Arguments) const
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", Name);
    tool.setProcessEnvironment(environment);
    tool.start("xdotool", p_Arguments);
    tool.waitForFinished();
    return QString::fromUtf8(tool.readAllStandardOutput());
}

qulonglong Screen::Window(QString const& p_Title) const
{
    QStringList const found = Do({"search", "--onlyvisible", "--name", p_Title}).split('\n');
    return found.value(0).toULongLong();
}

int Screen::Windows() const
{
    return Do({"search", "--onlyvisible", "--class", "varnholt"}).count('\n');
}

bool Screen::Focus(QString const& p_Title) const
{
    qulonglong window = 0;
    bool const isThere =
        QTest::qWaitFor([&] { return (window = Window(p_Title)) != 0; }, TestHost::c_Timeout);
    if (isThere)
        Do({"windowfocus", "--sync", QString::number(window)});
    return isThere;
}

void Screen::Press(QStringList const& p_Keys) const
{
    Do(QStringList{"key", "--clearmodifiers"} + p_Keys);
}

void Screen::Type(QString const& p_Text) const
{
    Do({"type", "--clearmodifiers", p_Text});
}

void Screen::Click(QPoint const& p_Place) const
{
    Do({"mousemove", QString::number(p_Place.x()), QString::number(p_Place.y()), "click", "1",
        "mousemove", "0", "0"});
}

void Screen::Resize(qulonglong p_Window, QSize const& p_Size) const
{
    QString const window = QString::number(p_Window);
    Do({"windowmove", window, "0", "0", "windowsize", window, QString::number(p_Size.width()),
        QString::number(p_Size.height())});
}

/// The server keeps its screen in a file: a header of big-endian words, colours, lines of pixels.
QImage Screen::Picture() const
{
    constexpr int c_HeaderSize = 0, c_Width = 4, c_Height = 5, c_LineBytes = 12, c_Colors = 19;
    constexpr int c_ColorBytes = 12;

    QByteArray const file = ReadFile(Folder.filePath("Xvfb_screen0"));
    auto const word = [&](int p_Index) {
        return static_cast<int>(qFromBigEndian<quint32>(file.constData() + 4 * p_Index));
    };
    auto const* const pixels = reinterpret_cast<uchar const*>(file.constData()) +
                               word(c_HeaderSize) + c_ColorBytes * word(c_Colors);
    return QImage(pixels, word(c_Width), word(c_Height), word(c_LineBytes), QImage::Format_RGB32)
        .copy();
}

QImage Screen::StillPicture() const
{
    constexpr int c_Milliseconds = 150;

    QImage before = Picture();
    QElapsedTimer sinceChange;
    sinceChange.start();
    // What never stands still is shown as it is.
    bool const isStill = QTest::qWaitFor(
        [&] {
            QImage const now = Picture();
            if (now != before)
                sinceChange.restart();
            before = now;
            return sinceChange.hasExpired(c_Milliseconds);
        },
        10 * c_Milliseconds);
    Q_UNUSED(isStill);
    return before;
}

} // namespace Varnholt::TestSupport
