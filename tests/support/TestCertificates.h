#pragma once
// A throwaway certificate authority made at test time, and server
// certificates it signs, written as PEM files into a directory: nothing
// secret is committed, and every run has keys of its own.

#include <filesystem>
#include <string>

namespace varnel::testing {

/// A server's certificate and private key files.
struct ServerCertificate {
  std::filesystem::path certificate;
  std::filesystem::path key;
};

class TestCertificates {
 public:
  /// Makes the CA; its certificate is caFile().
  explicit TestCertificates(std::filesystem::path directory);

  std::filesystem::path caFile() const { return directory_ / "ca.pem"; }

  /// A server certificate signed by the CA for `subjectAltNames` (as
  /// "DNS:localhost,IP:127.0.0.1"), valid from `notBefore` to `notAfter`
  /// seconds from now, with its key: NAME.pem and NAME-key.pem.
  ServerCertificate issue(const std::string& name, const std::string& subjectAltNames = "DNS:localhost,IP:127.0.0.1",
                       long notBefore = -3600, long notAfter = 24 * 3600) const;

 private:
  std::filesystem::path directory_;
};

}  // namespace varnel::testing
