#include "Tests/Screen/PhotographedGame.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

PhotographedGame::PhotographedGame(QSize const& p_Size, double p_Scale, QString const& p_Language,
                                   QString const& p_Prefix)
    : ScreenGame(p_Size, p_Language)
    , Size(p_Size)
    , Scale(p_Scale)
    , Prefix(qEnvironmentVariable("VARNHOLT_SCREENSHOTS", ".") + '/' + p_Prefix + '-')
{
}

void PhotographedGame::Reopen(QStringList const& p_Options, QString const& p_Title)
{
    QCOMPARE(Close(), 0);
    Last = On().Picture();
    QVERIFY(Open(p_Options, p_Title));
    On().Resize(On().Window(p_Title), Size);
}

void PhotographedGame::PressPrimary()
{
    constexpr QPoint c_FromCorner(200, 60);

    On().Click(QPoint(Size.width(), Size.height()) - c_FromCorner * Scale);
}

void PhotographedGame::Choose(QStringList const& p_Keys)
{
    constexpr int c_Milliseconds = 1'000;

    QVERIFY(WaitUntil([this] { // a key is lost while the button still springs back
        return Press(c_Name, {"F10"}) &&
               QTest::qWaitFor([this] { return On().Windows() == 2; }, c_Milliseconds);
    }));
    On().Press(p_Keys + QStringList{"Return"});
}

void PhotographedGame::Save(QString const& p_State, QImage const& p_Picture)
{
    Last = p_Picture;
    if (!p_Picture.save(Prefix + p_State + ".png"))
        qFatal("%s%s.png cannot be written", qPrintable(Prefix), qPrintable(p_State));
}

void PhotographedGame::Take(QString const& p_State)
{
    QVERIFY2(WaitUntil([this] { return On().Picture() != Last; }), qPrintable(p_State));
    Save(p_State, On().StillPicture());
}

void PhotographedGame::TakeAtOnce(QString const& p_State)
{
    Save(p_State, On().Picture());
}

void PhotographedGame::TakeOpened(QString const& p_State, QStringList const& p_Keys)
{
    QVERIFY(Press(c_Name, p_Keys));
    Take(p_State);
    QVERIFY(WaitUntil([this] {
        On().Press({"Escape"});
        return On().Windows() == 1;
    }));
}

bool PhotographedGame::WaitForRest()
{
    return WaitUntil([this] { return On().Window("%") == 0; });
}

} // namespace Varnholt::TestSupport
