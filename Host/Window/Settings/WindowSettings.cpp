#include "Host/Window/Settings/WindowSettings.hpp"

#include "Host/Cli/OptionText.hpp"

namespace Varnholt::Host {

namespace {

using Values = SettingsFile::Values;

QString const c_Language = QStringLiteral("window/language");
QString const c_StartMinimised = QStringLiteral("window/start-minimised");
QString const c_StayInTray = QStringLiteral("window/stay-in-tray");
QString const c_Notify = QStringLiteral("window/notify");
QString const c_Geometry = QStringLiteral("window/geometry");
QString const c_ContentUrl = QStringLiteral("options/content-url");
QString const c_DevChannel = QStringLiteral("options/dev-channel");
QString const c_LimitRate = QStringLiteral("options/limit-rate");
QString const c_Connections = QStringLiteral("options/connections");
QString const c_TrustKey = QStringLiteral("options/trust-key");

bool IsYes(Values const& p_Values, QString const& p_Key, bool p_Default)
{
    return OptionText::YesOrNo(p_Values.value(p_Key).toString()).value_or(p_Default);
}

} // namespace

WindowSettings WindowSettings::Of(Values const& p_Values)
{
    WindowSettings const usual;
    WindowSettings settings;
    settings.Language = p_Values.value(c_Language).toString();
    settings.StartsMinimised = IsYes(p_Values, c_StartMinimised, usual.StartsMinimised);
    settings.StaysInTray = IsYes(p_Values, c_StayInTray, usual.StaysInTray);
    settings.Notifies = IsYes(p_Values, c_Notify, usual.Notifies);
    settings.UsesDevChannel = IsYes(p_Values, c_DevChannel, usual.UsesDevChannel);
    QString const server = p_Values.value(c_ContentUrl).toString();
    if (OptionText::WhyNotServer(server).isEmpty())
        settings.ContentUrl = server;
    settings.BytesPerSecond = OptionText::Rate(p_Values.value(c_LimitRate).toString()).value_or(0);
    QString const connections = p_Values.value(c_Connections).toString();
    if (OptionText::WhyNotConnections(connections).isEmpty())
        settings.Connections = connections.toInt();
    settings.TrustKey = OptionText::TrustKey(p_Values.value(c_TrustKey).toString());
    settings.Geometry = QByteArray::fromBase64(p_Values.value(c_Geometry).toString().toLatin1());
    return settings;
}

Values WindowSettings::ChangesFrom(WindowSettings const& p_Before) const
{
    Values changes;
    auto const note = [&changes](QString const& p_Key, auto const& p_Now, auto const& p_Then) {
        if (p_Now != p_Then)
            changes[p_Key] = QVariant::fromValue(p_Now).toString();
    };
    auto const noteOrRemove = [&](QString const& p_Key, QString const& p_Now,
                                  QString const& p_Then) {
        note(p_Key, p_Now, p_Then);
        if (p_Now != p_Then && p_Now.isEmpty())
            changes[p_Key] = QVariant();
    };
    noteOrRemove(c_Language, Language, p_Before.Language);
    note(c_StartMinimised, StartsMinimised, p_Before.StartsMinimised);
    note(c_StayInTray, StaysInTray, p_Before.StaysInTray);
    note(c_Notify, Notifies, p_Before.Notifies);
    noteOrRemove(c_ContentUrl, ContentUrl, p_Before.ContentUrl);
    note(c_DevChannel, UsesDevChannel, p_Before.UsesDevChannel);
    note(c_LimitRate, BytesPerSecond, p_Before.BytesPerSecond);
    note(c_Connections, Connections, p_Before.Connections);
    noteOrRemove(c_TrustKey, TrustKey, p_Before.TrustKey);
    noteOrRemove(c_Geometry, QString::fromLatin1(Geometry.toBase64()),
                 QString::fromLatin1(p_Before.Geometry.toBase64()));
    return changes;
}

} // namespace Varnholt::Host
