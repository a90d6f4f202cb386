#pragma once

#include <QString>
#include <QTemporaryDir>

namespace Varnholt::TestSupport {

/// Certificates for servers at 127.0.0.1, and the authority that they are of.
class Certificates {
public:
    /// The names of a certificate's file and of its key's; the file of the key ends in ".key".
    struct Pair {
        QString Certificate;
        QString Key;
    };

    Certificates();

    QString AuthorityFile() const { return Folder.filePath("authority"); }
    Pair Good() { return Issue("good", "IP:127.0.0.1"); }
    Pair Expired()
    {
        return Issue("expired", "IP:127.0.0.1", "20200101000000Z", "20200102000000Z");
    }
    Pair Lasting()
    {
        return Issue("lasting", "IP:127.0.0.1", "20200101000000Z", "20491231235959Z");
    }
    Pair ForAnotherName() { return Issue("other", "DNS:elsewhere.example"); }
    Pair SelfSigned();

private:
    Pair PairOf(QString const& p_Name) const;
    Pair Issue(QString const& p_Name, QString const& p_AlternativeName, QString const& p_From = {},
               QString const& p_To = {});
    void MakeSelfSigned(QString const& p_Name, QString const& p_AlternativeName);
    void Run(QStringList const& p_Arguments) const;

    QTemporaryDir Folder;
};

} // namespace Varnholt::TestSupport
