#include "Tests/Window/DialogGame.hpp"

#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QAbstractButton>
#include <QLabel>
#include <QtTest>

namespace Varnholt::TestSupport {

DialogGame::DialogGame()
{
    constexpr int c_ShortMilliseconds = 5;

    Options.ModuleFile = LoadedPlugin::Path();
    Options.SettingsFile = SettingsFile;
    Options.ContentUrl = Server.BaseUrl();
    Options.RetryPauseMilliseconds = c_ShortMilliseconds;
    Options.Flush = [](QString const&) {}; // everybody's files would be waited for
}

DialogGame::~DialogGame()
{
    Dialog.reset();
    if (!Current)
        return;
    bool isClosed = false;
    QObject::connect(Current.get(), &Host::GameController::Closed, [&] { isClosed = true; });
    Current->Close();
    if (!WaitUntil([&] { return isClosed; }))
        qFatal("the game does not close");
}

bool DialogGame::Open()
{
    Current = std::make_unique<Host::GameController>(Options);
    QObject::connect(Current.get(), &Host::GameController::RunEnded, Current.get(),
                     [this](Host::RunRequest const& p_Request, Host::RunResult const& p_Result) {
                         Ended.push_back(p_Request);
                         Results.push_back(p_Result);
                     });
    Current->Choose(Options.ModuleFile);
    return WaitUntil([this] { return Current->State().Status.has_value(); });
}

void DialogGame::Show(QDialog* p_Dialog)
{
    Dialog.reset(p_Dialog);
    Dialog->open();
}

QAbstractButton* DialogGame::Button(QString const& p_Text) const
{
    QAbstractButton* found = nullptr;
    for (QAbstractButton* const button : Dialog->findChildren<QAbstractButton*>()) {
        QString const text = button->text().remove(QLatin1Char('&'));
        if (button->isVisible() && text == p_Text)
            return button;
        if (button->isVisible() && text.startsWith(p_Text) && !text.at(p_Text.size()).isLetter())
            found = button;
    }
    return found;
}

bool DialogGame::Offers(QString const& p_Text) const
{
    QAbstractButton const* const button = Button(p_Text);
    return button != nullptr && button->isEnabled();
}

QString DialogGame::Texts() const
{
    QStringList texts;
    for (QLabel const* const label : Dialog->findChildren<QLabel*>())
        if (label->isVisible())
            texts += label->text();
    return texts.join(QLatin1Char('\n'));
}

bool DialogGame::WaitUntil(std::function<bool()> const& p_Condition)
{
    return QTest::qWaitFor(p_Condition, TestHost::c_Timeout);
}

} // namespace Varnholt::TestSupport
