#pragma once

#include <QFile>

#include <openssl/pem.h>

/// Name, for which link's request, kind and value of the server's fault, and what is here then, ALL if left out. In a
/// value TO is the target of a good first request, HTTP and HTTPS are the servers.
constexpr char ANSWERS[] =
    "500|38|status|500|MINE;hang|38|hang||MINE;no JSON|38|body|<html>|MINE;array|38|body|[1]|MINE;"
    "cut|38|cut|{'usersettings':[{'area':'sounds','key':'volume','value':'9','time':9}]}|MINE;"
    "cut JSON|38|body|{'usersettings':[{'area':'sounds','key':'volume','value':'9','time':9}]|MINE;"
    "texts|38|body|{'usersettings':[{'area':'sounds','key':'volume','value':'9','time':'9'}]}|MINE volume=9;"
    "time 0|38|body|{'usersettings':[{'area':'sounds','key':'volume','value':9,'time':0}]}|MINE volume=9;"
    "types|38|body|{'usersettingstime':{},'playerinfos':[1,{'nick':[]}],'usersettings':[2,{'key':'v','value':[]}]}|"
    "MINE;lists|38|body|{'usersettings':{'key':'volume'},'playerinfos':'x'}|MINE;no lists|38|body|{}|MINE;"
    "no keys|38|body|{'usersettings':[{}],'playerinfos':[{'note':'x'},{'nick':'Zed'}]}|Bob=own Zed= themechips=5;"
    "relative|38|redirect|TO;absolute|38|redirect|HTTP/TO;expired certificate|38|redirect|HTTPS/TO;"
    "loop|38|redirect|/sync|MINE;send 500|39|status|500;send loop|39|redirect|/sync;send no JSON|39|body|<html>;"
    "send cut|39|cut|{'usersettingstime':2000000000,'playerinfostime':2000000000};"
    "send one time|39|body|{'playerinfostime':2000000000};send elsewhere|39|redirect|HTTPS/sync";

/// A certificate that has expired, and its key.
inline void WriteCertificate(const QString &path)
{
    EVP_PKEY *key = EVP_EC_gen("P-256");
    X509 *certificate = X509_new();
    X509_gmtime_adj(X509_getm_notBefore(certificate), -2000);
    X509_gmtime_adj(X509_getm_notAfter(certificate), -1000);
    X509_set_pubkey(certificate, key);
    X509_sign(certificate, key, EVP_sha256());
    BIO *file = BIO_new_file(QFile::encodeName(path).constData(), "w");
    PEM_write_bio_X509(file, certificate);
    PEM_write_bio_PrivateKey(file, key, nullptr, nullptr, 0, nullptr, nullptr);
    BIO_free(file);
    X509_free(certificate);
    EVP_PKEY_free(key);
}
