#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The values of options as people write them: what they mean, and why they are not valid.
///
/// A reason is a sentence without a full stop, empty when there is none. It holds no value that
/// could have a password in it.
namespace Varnholt::Host::OptionText {

/// Bytes per second: "500k", "2M" or "1.5MiB"; a kilobyte has 1024 bytes.
std::optional<quint64> Rate(QString const& p_Text);
/// The one list of words for yes and no, in upper or lower case.
std::optional<bool> YesOrNo(QString const& p_Text);
/// Of "90", "90s", "10m" or "2h"; at most 500 hours.
std::optional<int> Milliseconds(QString const& p_Text);
/// The words of a command, split and unquoted as a shell would, without expansions; nothing when a
/// quote is not closed.
std::optional<QStringList> Words(QString const& p_Text);
/// The line of a public key, given by itself or by the name of a file that holds it; empty when it
/// is neither.
QString TrustKey(QString const& p_Text);

QString WhyNotYesOrNo(QString const& p_Text);
QString WhyNotRate(QString const& p_Text);
QString WhyNotTime(QString const& p_Text);
/// Refuses 0 too.
QString WhyNotTimeout(QString const& p_Text);
QString WhyNotConnections(QString const& p_Text);
QString WhyNotServer(QString const& p_Text);
QString WhyNotProxy(QString const& p_Text);
QString WhyNotUser(QString const& p_Text);
/// Refuses a relative path: a later run starts in another folder.
QString WhyNotCommand(QString const& p_Text);
/// Of the name of a file that is read.
QString WhyNotReadable(QString const& p_File);
QString WhyNotTrustKey(QString const& p_Text);
/// Of the name of a file with certificates.
QString WhyNotCertificates(QString const& p_File);

/// The absolute name of a file, since the session changes the current folder; empty of an empty
/// one.
QString Absolute(QString const& p_Name);

/// A text fit to be shown: what may be user and password before an "@" becomes "***".
QString Hidden(QString p_Text);

} // namespace Varnholt::Host::OptionText
