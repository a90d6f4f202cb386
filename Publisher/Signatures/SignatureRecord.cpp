#include "Publisher/Signatures/SignatureRecord.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Tree/TreeMark.hpp"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Publisher {

namespace {

QString const c_SigningKey = QStringLiteral("key");
QString const c_Sequence = QStringLiteral("sequence");

} // namespace

SignatureRecord::SignatureRecord(QString const& p_Root)
    : File(TreeMark(p_Root).PrivatePath(QStringLiteral("signatures")))
{
    QFile file(File);
    if (!file.exists())
        return;
    QJsonObject root;
    if (file.open(QIODevice::ReadOnly))
        root = QJsonDocument::fromJson(file.readAll()).object();
    Key = Signing::PublicKey::FromText(root[c_SigningKey].toString().toLatin1());
    bool isNumber = false;
    Number = root[c_Sequence].toString().toULongLong(&isNumber);
    if (!Key || !isNumber) {
        throw Failure(File + QStringLiteral(": the record of the signatures is damaged: take it "
                                            "from a backup"));
    }
}

QByteArray SignatureRecord::Text() const
{
    // The number as text: a number of JSON would be rounded when it is large.
    QJsonObject const root{{c_SigningKey, QString::fromLatin1(Key->ToText())},
                           {c_Sequence, QString::number(Number)}};
    return QJsonDocument(root).toJson();
}

void SignatureRecord::CheckMayChange(SigningOptions const& p_Options) const
{
    if (!IsSigned())
        return;
    if (!p_Options.Key && !p_Options.Unsigned) {
        throw Failure(QStringLiteral("the tree is signed, and players who have its key would take "
                                     "nothing more of it: give --sign-key, or --unsigned if that "
                                     "is wanted"),
                      Failure::c_Usage);
    }
    if (p_Options.Key && !(p_Options.Key->Public() == *Key)) {
        throw Failure(QStringLiteral("the tree is signed with the key %1, this is %2: \"keys "
                                     "change\" puts another in its place")
                          .arg(Key->KeyId(), p_Options.Key->Public().KeyId()),
                      Failure::c_Usage);
    }
}

} // namespace Varnholt::Publisher
