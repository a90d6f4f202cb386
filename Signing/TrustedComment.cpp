#include "Signing/TrustedComment.hpp"

#include <QList>

#include <array>
#include <utility>

namespace Varnholt::Signing {

namespace {

using Role = TrustedComment::Role;

QByteArray const c_Start = QByteArrayLiteral("varnholt 1 ");
QString const c_TimeFormat = QStringLiteral("yyyy-MM-ddTHH:mm:ssZ");
QByteArray const c_Expires = QByteArrayLiteral("expires");

std::array<std::pair<Role, char const*>, 5> const c_Roles = {{
    {Role::Version, "version"},
    {Role::Manifest, "manifest"},
    {Role::Hosts, "hosts"},
    {Role::RealmList, "realmlist"},
    {Role::Key, "key"},
}};

QByteArray Encoded(QString const& p_Value)
{
    QByteArray encoded;
    for (char const byte : p_Value.toUtf8()) {
        auto const code = static_cast<unsigned char>(byte);
        if (code <= ' ' || code == 0x7F || byte == '%')
            encoded += '%' + QByteArray(1, byte).toHex().toUpper();
        else
            encoded += byte;
    }
    return encoded;
}

QByteArray Written(QDateTime const& p_Time)
{
    return p_Time.toUTC().toString(c_TimeFormat).toLatin1();
}

std::optional<Role> RoleOf(QByteArray const& p_Name)
{
    for (auto const& [role, name] : c_Roles) {
        if (p_Name == name)
            return role;
    }
    return std::nullopt;
}

/// Takes a comment's parts one by one.
class Reader {
public:
    explicit Reader(QList<QByteArray> p_Parts)
        : Parts(std::move(p_Parts))
    {
    }

    QByteArray Take(QByteArray const& p_Key)
    {
        if (Parts.isEmpty() || !Parts.first().startsWith(p_Key + '=')) {
            IsGood = false;
            return {};
        }
        return Parts.takeFirst().mid(p_Key.size() + 1);
    }

    QString TakeText(QByteArray const& p_Key)
    {
        return QString::fromUtf8(QByteArray::fromPercentEncoding(Take(p_Key)));
    }

    quint64 TakeNumber(QByteArray const& p_Key)
    {
        QByteArray const value = Take(p_Key);
        bool isNumber = false;
        quint64 const number = value.toULongLong(&isNumber);
        IsGood = IsGood && isNumber && QByteArray::number(number) == value;
        return number;
    }

    QDateTime TakeTime(QByteArray const& p_Key)
    {
        QByteArray const value = Take(p_Key);
        QDateTime time = QDateTime::fromString(QString::fromLatin1(value), c_TimeFormat);
        time.setTimeSpec(Qt::UTC);
        IsGood = IsGood && time.isValid() && Written(time) == value;
        return time;
    }

    /// Skips what nobody knows. \return whether the part is there, next
    bool Find(QByteArray const& p_Key)
    {
        while (!Parts.isEmpty() && !Parts.first().startsWith(p_Key + '='))
            Parts.removeFirst();
        return !Parts.isEmpty();
    }

    bool IsGood = true;

private:
    QList<QByteArray> Parts;
};

} // namespace

std::optional<TrustedComment> TrustedComment::FromText(QByteArray const& p_Text)
{
    if (!p_Text.startsWith(c_Start))
        return std::nullopt;
    Reader reader(p_Text.mid(c_Start.size()).split(' '));
    TrustedComment comment;
    std::optional<Role> const role = RoleOf(reader.Take("document"));
    comment.Game = reader.TakeText("game");
    comment.Platform = reader.TakeText("platform");
    comment.Channel = reader.TakeText("channel");
    comment.Build = reader.TakeText("build");
    comment.Sequence = reader.TakeNumber("sequence");
    comment.Time = reader.TakeTime("time");
    if (reader.Find(c_Expires))
        comment.Expires = reader.TakeTime(c_Expires);
    bool const isChannel =
        comment.Channel == QLatin1String("live") || comment.Channel == QLatin1String("dev");
    if (!role || !isChannel || !reader.IsGood)
        return std::nullopt;
    comment.Document = *role;
    return comment;
}

QByteArray TrustedComment::ToText() const
{
    QByteArray text = c_Start + "document=" + NameOf(Document).toLatin1() +
                      " game=" + Encoded(Game) + " platform=" + Encoded(Platform) +
                      " channel=" + Encoded(Channel) + " build=" + Encoded(Build) +
                      " sequence=" + QByteArray::number(Sequence) + " time=" + Written(Time);
    if (Expires)
        text += ' ' + c_Expires + '=' + Written(*Expires);
    return text;
}

QString TrustedComment::NameOf(Role p_Role)
{
    for (auto const& [role, name] : c_Roles) {
        if (role == p_Role)
            return QString::fromLatin1(name);
    }
    return {};
}

} // namespace Varnholt::Signing
