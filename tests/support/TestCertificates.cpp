#include "support/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace varnel::testing {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;

Key newKey() { return Key(EVP_EC_gen("P-256"), &EVP_PKEY_free); }

void addExtension(X509* certificate, X509* issuer, const char* name, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_nconf(nullptr, &context, name, value.c_str());
  if (!extension) throw std::runtime_error(std::string("bad certificate extension ") + name);
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

Certificate newCertificate(EVP_PKEY* key, const char* commonName, long serial, long notBefore, long notAfter) {
  Certificate certificate(X509_new(), &X509_free);
  X509_set_version(certificate.get(), 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), notBefore);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), notAfter);
  X509_set_pubkey(certificate.get(), key);
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0);
  return certificate;
}

void writePem(const std::filesystem::path& path, X509* certificate, EVP_PKEY* key) {
  std::unique_ptr<FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "w"), &std::fclose);
  if (!file) throw std::runtime_error("cannot write " + path.string());
  const int written = certificate ? PEM_write_X509(file.get(), certificate)
                                  : PEM_write_PrivateKey(file.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
  if (written != 1) throw std::runtime_error("cannot write " + path.string());
}

Key readKey(const std::filesystem::path& path) {
  std::unique_ptr<FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "r"), &std::fclose);
  return Key(file ? PEM_read_PrivateKey(file.get(), nullptr, nullptr, nullptr) : nullptr, &EVP_PKEY_free);
}

Certificate readCertificate(const std::filesystem::path& path) {
  std::unique_ptr<FILE, decltype(&std::fclose)> file(std::fopen(path.c_str(), "r"), &std::fclose);
  return Certificate(file ? PEM_read_X509(file.get(), nullptr, nullptr, nullptr) : nullptr, &X509_free);
}

}  // namespace

TestCertificates::TestCertificates(std::filesystem::path directory) : directory_(std::move(directory)) {
  Key key = newKey();
  Certificate ca = newCertificate(key.get(), "Varnel Test CA", 1, -3600, 7 * 24 * 3600);
  X509_set_issuer_name(ca.get(), X509_get_subject_name(ca.get()));
  addExtension(ca.get(), ca.get(), "basicConstraints", "critical,CA:TRUE");
  addExtension(ca.get(), ca.get(), "keyUsage", "critical,keyCertSign,cRLSign");
  addExtension(ca.get(), ca.get(), "subjectKeyIdentifier", "hash");
  X509_sign(ca.get(), key.get(), EVP_sha256());
  writePem(caFile(), ca.get(), nullptr);
  writePem(directory_ / "ca-key.pem", nullptr, key.get());
}

ServerCertificate TestCertificates::issue(const std::string& name, const std::string& subjectAltNames, long notBefore,
                                       long notAfter) const {
  static long serial = 100;
  Certificate ca = readCertificate(caFile());
  Key caKey = readKey(directory_ / "ca-key.pem");
  if (!ca || !caKey) throw std::runtime_error("the test CA is unreadable");
  Key key = newKey();
  Certificate certificate = newCertificate(key.get(), name.c_str(), ++serial, notBefore, notAfter);
  X509_set_issuer_name(certificate.get(), X509_get_subject_name(ca.get()));
  addExtension(certificate.get(), ca.get(), "basicConstraints", "critical,CA:FALSE");
  addExtension(certificate.get(), ca.get(), "extendedKeyUsage", "serverAuth");
  addExtension(certificate.get(), ca.get(), "subjectAltName", subjectAltNames);
  addExtension(certificate.get(), ca.get(), "authorityKeyIdentifier", "keyid");
  X509_sign(certificate.get(), caKey.get(), EVP_sha256());
  ServerCertificate files{directory_ / (name + ".pem"), directory_ / (name + "-key.pem")};
  writePem(files.certificate, certificate.get(), nullptr);
  writePem(files.key, nullptr, key.get());
  return files;
}

}  // namespace varnel::testing
