#include "CertificateCommands.h"

#include "Quoting.h"
#include "Report.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslCertificateExtension>
#include <QTemporaryDir>

#include <filesystem>
#include <system_error>

namespace {

const QString PROGRAM = QStringLiteral("openssl");
constexpr int AUTHORITY_DAYS = 3650;
constexpr int SERVER_DAYS = 825;
constexpr int MAX_NAME = 64; // as X.509 has it
constexpr auto PRIVATE = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

// Extensions, which say what a certificate may be used for. %1 are the server's names.
constexpr char CONFIGURATION[] = R"([req]
distinguished_name = name
prompt = no
[name]
commonName = %2
[authority]
basicConstraints = critical, CA:TRUE, pathlen:0
keyUsage = critical, keyCertSign, cRLSign
subjectKeyIdentifier = hash
[server]
basicConstraints = critical, CA:FALSE
keyUsage = critical, digitalSignature
extendedKeyUsage = serverAuth
subjectKeyIdentifier = hash
authorityKeyIdentifier = keyid
subjectAltName = %1
)";

bool IsHost(const QString &host)
{
    static const QRegularExpression name(
        QStringLiteral("\\A(\\*\\.)?([A-Za-z0-9]([A-Za-z0-9-]{0,61}[A-Za-z0-9])?\\.)*"
                       "[A-Za-z0-9]([A-Za-z0-9-]{0,61}[A-Za-z0-9])?\\z"));
    return !QHostAddress(host).isNull() || (host.size() <= 253 && name.match(host).hasMatch());
}

QString MakeNames(const QStringList &hosts)
{
    QStringList names;
    for (const QString &host : hosts)
        names.append((QHostAddress(host).isNull() ? QStringLiteral("DNS:") : QStringLiteral("IP:")) + host);
    return names.join(QStringLiteral(", "));
}

// Makes files in a temporary folder, from where those that are complete are moved.
class CWorkshop
{
public:
    CWorkshop(const QString &folder, CReport &report)
        : m_folder(folder)
        , m_work(folder + QStringLiteral("/making-XXXXXX"))
        , m_report(report)
    {
        if (!m_work.isValid())
            m_report.Error(folder, 0, m_work.errorString());
    }

    bool Write(const QString &name, const QByteArray &content)
    {
        QFile file(m_work.filePath(name));
        const bool isGood = file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
        if (!isGood)
            m_report.Error(file.fileName(), 0, file.errorString());
        return isGood;
    }

    bool Run(const QStringList &arguments)
    {
        QProcess program;
        program.setWorkingDirectory(m_work.path());
        program.start(PROGRAM, arguments);
        if (!program.waitForStarted()) {
            m_report.Error(PROGRAM, 0, program.errorString());
            return false;
        }
        program.waitForFinished(-1);
        const bool isGood = program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
        if (!isGood)
            m_report.Error(PROGRAM, 0, QString::fromLocal8Bit(program.readAllStandardError()).trimmed());
        return isGood;
    }

    bool MakeKey(const QString &name)
    {
        return Run({L("genpkey"), L("-algorithm"), L("EC"), L("-pkeyopt"), L("ec_paramgen_curve:P-256"), L("-out"),
                    name}) &&
               QFile::setPermissions(m_work.filePath(name), PRIVATE);
    }

    // Moves a file to the folder, in place of an old one.
    bool Deliver(const QString &name)
    {
        const QString target = m_folder.filePath(name);
        std::error_code error;
        std::filesystem::rename(m_work.filePath(name).toStdString(), target.toStdString(), error);
        if (error)
            m_report.Error(target, 0, QString::fromStdString(error.message()));
        return !error;
    }

private:
    QDir m_folder;
    QTemporaryDir m_work;
    CReport &m_report;
};

bool MakeAuthority(CWorkshop &workshop)
{
    return workshop.MakeKey(L("authority.key")) &&
           workshop.Run({L("req"), L("-x509"), L("-new"), L("-config"), L("authority.cnf"), L("-extensions"),
                         L("authority"), L("-key"), L("authority.key"), L("-days"), QString::number(AUTHORITY_DAYS),
                         L("-out"), L("authority.pem")}) &&
           workshop.Deliver(L("authority.key")) && workshop.Deliver(L("authority.pem"));
}

bool MakeServer(CWorkshop &workshop)
{
    return workshop.MakeKey(L("server.key")) &&
           workshop.Run({L("req"), L("-new"), L("-config"), L("server.cnf"), L("-key"), L("server.key"), L("-out"),
                         L("server.csr")}) &&
           workshop.Run({L("x509"), L("-req"), L("-in"), L("server.csr"), L("-CA"), L("../authority.pem"),
                         L("-CAkey"), L("../authority.key"), L("-extfile"), L("server.cnf"), L("-extensions"),
                         L("server"), L("-days"), QString::number(SERVER_DAYS), L("-out"), L("server.pem")}) &&
           workshop.Deliver(L("server.key")) && workshop.Deliver(L("server.pem"));
}

bool Check(const QString &folder, const QStringList &hosts, bool replaces, CReport &report)
{
    if (hosts.isEmpty())
        report.Error(folder, 0, L("needs a host, as in --host lobby.example.org"));
    for (const QString &host : hosts) {
        if (!IsHost(host))
            report.Error(folder, 0, Quoted(host) + L(" is neither a name of a host nor an address"));
    }
    const QDir files(folder);
    if (files.exists(L("authority.pem")) != files.exists(L("authority.key")))
        report.Error(folder, 0, L("has only one of authority.pem and authority.key, which belong together"));
    if (!replaces && (files.exists(L("server.pem")) || files.exists(L("server.key"))))
        report.Error(folder, 0, L("has a server's certificate already; --force replaces it"));
    if (!report.HasErrors() && !QDir().mkpath(folder))
        report.Error(folder, 0, L("can't be created"));
    return !report.HasErrors();
}

QString Describe(const QSslCertificate &certificate)
{
    const auto name = [](const QStringList &parts) { return parts.join(L(", ")); };
    const auto time = [](const QDateTime &when) { return when.toUTC().toString(Qt::ISODate); };
    QStringList names;
    const auto alternatives = certificate.subjectAlternativeNames();
    for (const QString &alternative : alternatives)
        names.append(alternative);
    names.sort();
    const bool isOver = certificate.expiryDate() < QDateTime::currentDateTimeUtc();
    return L("Name:        %1\nIssuer:      %2\nHosts:       %3\nValid from:  %4\nValid until: %5%6\nSHA-256:     "
             "%7\n")
        .arg(name(certificate.subjectInfo(QSslCertificate::CommonName)),
             name(certificate.issuerInfo(QSslCertificate::CommonName)),
             names.isEmpty() ? L("none, an authority") : name(names), time(certificate.effectiveDate()),
             time(certificate.expiryDate()), isOver ? L(", which is over") : QString(),
             QString::fromLatin1(certificate.digest(QCryptographicHash::Sha256).toHex(':')));
}

} // namespace

int CertificateCommands::Make(const QString &folder, const QStringList &hosts, bool replaces)
{
    CReport report;
    if (!Check(folder, hosts, replaces, report))
        return report.GetExitCode();
    CWorkshop workshop(folder, report);
    const QString configuration = L(CONFIGURATION).arg(MakeNames(hosts));
    const bool hasAuthority = QFile::exists(folder + L("/authority.pem"));
    if (!report.HasErrors() &&
        workshop.Write(L("authority.cnf"),
                       configuration.arg((L("Authority of ") + hosts.constFirst()).left(MAX_NAME)).toUtf8()) &&
        workshop.Write(L("server.cnf"), configuration.arg(hosts.constFirst().left(MAX_NAME)).toUtf8()) &&
        (hasAuthority || MakeAuthority(workshop)) && MakeServer(workshop))
        return Show(folder + L("/server.pem"));
    return report.GetExitCode();
}

int CertificateCommands::Show(const QString &path)
{
    CReport report;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        report.Error(path, 0, file.errorString());
        return report.GetExitCode();
    }
    const QList<QSslCertificate> certificates = QSslCertificate::fromDevice(&file);
    if (certificates.isEmpty())
        report.Error(path, 0, L("has no certificate in PEM form"));
    for (const QSslCertificate &certificate : certificates)
        report.Print(Describe(certificate));
    return report.GetExitCode();
}
