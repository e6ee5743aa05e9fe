#include "LoopbackServers.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace varnel::testing {

ScriptedServer::ScriptedServer() : server_(std::make_unique<httplib::Server>()) {}

ScriptedServer::ScriptedServer(const std::filesystem::path& certificate, const std::filesystem::path& key)
    : server_(std::make_unique<httplib::SSLServer>(certificate.c_str(), key.c_str())), scheme_("https") {}

void ScriptedServer::start() {
  server_->set_keep_alive_max_count(1000);
  server_->set_tcp_nodelay(true);
  server_->set_keep_alive_timeout(1);  // stop() waits this long for idle connections
  port_ = server_->bind_to_any_port("127.0.0.1");
  if (port_ <= 0) throw std::runtime_error("cannot bind a loopback port");
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::yield();
}

ScriptedServer::~ScriptedServer() {
  server_->stop();
  if (thread_.joinable()) thread_.join();
}

std::string ScriptedServer::baseUrl() const { return scheme_ + "://127.0.0.1:" + std::to_string(port_); }

DroppingListener::DroppingListener() {
  socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0 || ::listen(socket_, 16) != 0 ||
      ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("cannot listen on loopback");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] {
    while (!stopping_) {
      pollfd ready{socket_, POLLIN, 0};
      if (::poll(&ready, 1, 50) <= 0) continue;
      const int connection = ::accept(socket_, nullptr, nullptr);
      if (connection < 0) continue;
      std::string head;
      char buffer[4096];
      while (head.find("\r\n\r\n") == std::string::npos) {
        pollfd readable{connection, POLLIN, 0};
        if (::poll(&readable, 1, 5000) <= 0) break;
        const ssize_t count = ::recv(connection, buffer, sizeof buffer, 0);
        if (count <= 0) break;
        head.append(buffer, static_cast<std::size_t>(count));
      }
      {
        std::lock_guard lock(mutex_);
        heads_.push_back(head.substr(0, head.find("\r\n\r\n")));
      }
      ::close(connection);
    }
  });
}

DroppingListener::~DroppingListener() {
  stopping_ = true;
  thread_.join();
  ::close(socket_);
}

std::string DroppingListener::baseUrl() const { return "http://127.0.0.1:" + std::to_string(port_); }

std::vector<std::string> DroppingListener::requestHeads() const {
  std::lock_guard lock(mutex_);
  return heads_;
}

void writeSelfSignedCertificate(const std::filesystem::path& directory) {
  EVP_PKEY* key = EVP_RSA_gen(2048);
  X509* certificate = X509_new();
  X509_set_version(certificate, 2);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 24 * 3600);
  X509_set_pubkey(certificate, key);
  X509_NAME* name = X509_get_subject_name(certificate);
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("localhost"), -1, -1, 0);
  X509_set_issuer_name(certificate, name);
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
  for (const char* extension : {"subjectAltName", "basicConstraints"}) {
    const char* value = std::string_view(extension) == "subjectAltName" ? "DNS:localhost,IP:127.0.0.1" : "critical,CA:TRUE";
    X509_EXTENSION* made = X509V3_EXT_nconf(nullptr, &context, extension, value);
    X509_add_ext(certificate, made, -1);
    X509_EXTENSION_free(made);
  }
  X509_sign(certificate, key, EVP_sha256());
  FILE* certFile = std::fopen((directory / "cert.pem").c_str(), "w");
  PEM_write_X509(certFile, certificate);
  std::fclose(certFile);
  FILE* keyFile = std::fopen((directory / "key.pem").c_str(), "w");
  PEM_write_PrivateKey(keyFile, key, nullptr, nullptr, 0, nullptr, nullptr);
  std::fclose(keyFile);
  X509_free(certificate);
  EVP_PKEY_free(key);
}

}  // namespace varnel::testing
