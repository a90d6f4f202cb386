#include "Host/Window/Dialogs/SettingsDialog.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>

namespace Varnholt::TestSupport {

using Host::SettingsDialog;
using Host::WindowSettings;
using Values = Host::SettingsFile::Values;

/// The settings of the window, in the file and in their dialog.
class SettingsDialogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SettingsAreReadAsTheyAreKept();
    void WhatIsUnusableCountsAsNotGiven();
    void OnlyWhatIsAnotherIsWritten();
    void TheDialogShowsAndChoosesEach();
    void ALimitThatIsNotTouchedStaysToTheByte();
    void AnAddressThatIsNoneCannotBeSaved();
    void WithoutATrayNothingCanStayThere();

private:
    Values const Kept{{"window/language", "frFR"},          {"window/start-minimised", "true"},
                      {"window/stay-in-tray", "true"},      {"window/notify", "false"},
                      {"options/content-url", "http://a/"}, {"options/dev-channel", "yes"},
                      {"options/limit-rate", "1.5MiB"},     {"options/connections", "7"}};
};

void SettingsDialogTest::SettingsAreReadAsTheyAreKept()
{
    WindowSettings const settings = WindowSettings::Of(Kept);
    QCOMPARE(settings.Language, QString("frFR"));
    QVERIFY(settings.StartsMinimised && settings.StaysInTray && !settings.Notifies);
    QCOMPARE(settings.ContentUrl, QString("http://a/"));
    QVERIFY(settings.UsesDevChannel);
    QCOMPARE(settings.BytesPerSecond, quint64(1536) * 1024);
    QCOMPARE(settings.Connections, 7);
    QVERIFY(WindowSettings().ChangesFrom(WindowSettings::Of({})).isEmpty());
}

void SettingsDialogTest::WhatIsUnusableCountsAsNotGiven()
{
    WindowSettings const settings = WindowSettings::Of({{"options/content-url", "ftp://a/"},
                                                        {"options/limit-rate", "much"},
                                                        {"options/connections", "0"},
                                                        {"window/notify", "perhaps"}});
    QVERIFY(settings.ChangesFrom(WindowSettings()).isEmpty());
}

void SettingsDialogTest::OnlyWhatIsAnotherIsWritten()
{
    WindowSettings const before = WindowSettings::Of(Kept);
    QVERIFY(before.ChangesFrom(before).isEmpty());
    WindowSettings after = before;
    after.ContentUrl.clear();
    after.Connections = 3;
    after.Geometry = "bytes \1";
    Values const changes = after.ChangesFrom(before);
    QCOMPARE(changes.keys(),
             QStringList({"options/connections", "options/content-url", "window/geometry"}));
    QVERIFY(!changes["options/content-url"].isValid());
    QCOMPARE(WindowSettings::Of(changes).Connections, 3);
    QCOMPARE(WindowSettings::Of(changes).Geometry, after.Geometry);
}

void SettingsDialogTest::TheDialogShowsAndChoosesEach()
{
    WindowSettings const before = WindowSettings::Of(Kept);
    SettingsDialog const dialog(before, "http://usual/", true);
    QVERIFY(dialog.Chosen().ChangesFrom(before).isEmpty());
    for (QCheckBox* const box : dialog.findChildren<QCheckBox*>())
        box->toggle();
    auto const combos = dialog.findChildren<QComboBox*>();
    combos[0]->setCurrentText("Italiano");
    combos[1]->setCurrentIndex(0);
    dialog.findChild<QLineEdit*>()->setText(" https://b:8443/ ");
    QCOMPARE(dialog.findChild<QLineEdit*>()->placeholderText(), QString("http://usual/"));
    dialog.findChild<QDoubleSpinBox*>()->setValue(0);
    QCOMPARE(dialog.findChild<QDoubleSpinBox*>()->text(), QString("no limit"));
    WindowSettings const chosen = dialog.Chosen();
    QCOMPARE(chosen.Language, QString("itIT"));
    QVERIFY(!chosen.StartsMinimised && !chosen.StaysInTray && chosen.Notifies);
    QCOMPARE(chosen.ContentUrl, QString("https://b:8443/"));
    QVERIFY(!chosen.UsesDevChannel);
    QCOMPARE(chosen.BytesPerSecond, quint64(0));
}

void SettingsDialogTest::ALimitThatIsNotTouchedStaysToTheByte()
{
    WindowSettings before;
    before.BytesPerSecond = 123'457;
    SettingsDialog const dialog(before, {}, true);
    QCOMPARE(dialog.Chosen().BytesPerSecond, quint64(123'457));
}

void SettingsDialogTest::AnAddressThatIsNoneCannotBeSaved()
{
    SettingsDialog dialog({}, {}, true);
    dialog.open();
    auto* const save = dialog.findChildren<QPushButton*>().front();
    QCOMPARE(save->text(), QString("Sa&ve"));
    QVERIFY(save->isEnabled());
    dialog.findChild<QLineEdit*>()->setText("http://me:secret@a/");
    QVERIFY(!save->isEnabled());
    dialog.findChild<QLineEdit*>()->clear();
    QVERIFY(save->isEnabled());
    dialog.findChildren<QLineEdit*>()[1]->setText("no key");
    QVERIFY(!save->isEnabled());
}

void SettingsDialogTest::WithoutATrayNothingCanStayThere()
{
    SettingsDialog const dialog(WindowSettings::Of(Kept), {}, false);
    auto const boxes = dialog.findChildren<QCheckBox*>();
    QVERIFY(!boxes[1]->isEnabled() && !boxes[1]->isChecked() && !boxes[1]->toolTip().isEmpty());
    QVERIFY(dialog.Chosen().StaysInTray); // for another desktop
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SettingsDialogTest)
#include "tst_SettingsDialog.moc"
