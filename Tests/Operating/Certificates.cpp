#include "Tests/Operating/Certificates.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QProcess>

namespace Varnholt::TestSupport {

namespace {

QStringList const c_NewKey{"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"};

/// What "openssl ca" wants to be told; FOLDER stands for where it keeps its records.
constexpr char c_Configuration[] = "[ca]\n"
                                   "default_ca = authority\n"
                                   "[authority]\n"
                                   "database = FOLDER/issued\n"
                                   "new_certs_dir = FOLDER\n"
                                   "certificate = FOLDER/authority\n"
                                   "private_key = FOLDER/authority.key\n"
                                   "rand_serial = yes\n"
                                   "default_md = sha256\n"
                                   "default_days = 2\n"
                                   "unique_subject = no\n"
                                   "copy_extensions = copy\n"
                                   "policy = anything\n"
                                   "[anything]\n"
                                   "commonName = supplied\n";

} // namespace

Certificates::Certificates()
{
    QByteArray const configuration =
        QByteArray(c_Configuration).replace("FOLDER", Folder.path().toUtf8());
    if (!WriteFile(Folder.filePath("configuration"), configuration) ||
        !WriteFile(Folder.filePath("issued"), {}))
        qFatal("the authority's records cannot be written");
    MakeSelfSigned("authority", {});
}

Certificates::Pair Certificates::SelfSigned()
{
    MakeSelfSigned("self", "IP:127.0.0.1");
    return PairOf("self");
}

Certificates::Pair Certificates::PairOf(QString const& p_Name) const
{
    return {Folder.filePath(p_Name), Folder.filePath(p_Name + ".key")};
}

Certificates::Pair Certificates::Issue(QString const& p_Name, QString const& p_AlternativeName,
                                       QString const& p_From, QString const& p_To)
{
    Pair const pair = PairOf(p_Name);
    QString const request = Folder.filePath(p_Name + ".request");
    Run(QStringList{"req", "-new", "-subj", "/CN=" + p_Name, "-addext",
                    "subjectAltName=" + p_AlternativeName, "-keyout", pair.Key, "-out", request} +
        c_NewKey);
    QStringList issue{"ca",  "-batch", "-notext", "-config",       Folder.filePath("configuration"),
                      "-in", request,  "-out",    pair.Certificate};
    if (!p_From.isEmpty())
        issue += {"-startdate", p_From, "-enddate", p_To};
    Run(issue);
    return pair;
}

void Certificates::MakeSelfSigned(QString const& p_Name, QString const& p_AlternativeName)
{
    Pair const pair = PairOf(p_Name);
    QStringList arguments{"req", "-x509",   "-subj",  "/CN=" + p_Name, "-days",
                          "2",   "-keyout", pair.Key, "-out",          pair.Certificate};
    if (!p_AlternativeName.isEmpty())
        arguments += {"-addext", "subjectAltName=" + p_AlternativeName};
    Run(arguments + c_NewKey);
}

void Certificates::Run(QStringList const& p_Arguments) const
{
    QProcess process;
    process.start("openssl", p_Arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("openssl %s: %s", qPrintable(p_Arguments.join(' ')),
               process.readAllStandardError().constData());
}

} // namespace Varnholt::TestSupport
