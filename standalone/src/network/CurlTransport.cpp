#include "varnel/standalone/network/CurlTransport.h"

#include <curl/curl.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace varnel::standalone {

// One request on its way. A named namespace rather than an anonymous one,
// because the transport's state holds these records as members.
namespace curl_transport_detail {

struct Transfer {
  CurlTransport::TransferId id = 0;
  HttpRequest request;
  /// originOf(request.url), or "" for a URL that has none.
  std::string origin;
  CurlTransport::Completion completion;
  std::chrono::steady_clock::time_point due;
  CURL* easy = nullptr;
  curl_slist* headerList = nullptr;
  HttpOutcome outcome;
  char errorText[CURL_ERROR_SIZE] = {};

  ~Transfer() {
    if (headerList) curl_slist_free_all(headerList);
    if (easy) curl_easy_cleanup(easy);
  }
};

}  // namespace curl_transport_detail

using curl_transport_detail::Transfer;

namespace {

using Clock = std::chrono::steady_clock;

/// libcurl's process-wide set-up, done once before the first handle.
void initialiseCurlOnce() {
  static const bool initialised = [] { return curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK; }();
  (void)initialised;
}

std::size_t appendBody(char* data, std::size_t size, std::size_t count, void* transfer) {
  static_cast<Transfer*>(transfer)->outcome.body.append(data, size * count);
  return size * count;
}

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) return {};
  const auto last = text.find_last_not_of(" \t\r\n");
  return std::string(text.substr(first, last - first + 1));
}

std::size_t collectHeader(char* data, std::size_t size, std::size_t count, void* transfer) {
  auto& headers = static_cast<Transfer*>(transfer)->outcome.headers;
  const std::string_view line(data, size * count);
  if (line.starts_with("HTTP/")) {
    headers.clear();  // a new answer (after an interim 1xx one) starts over
  } else if (auto colon = line.find(':'); colon != std::string_view::npos) {
    headers.insert_or_assign(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
  }
  return size * count;
}

/// Trusts the extra CA file in addition to the default store.
CURLcode addExtraCa(CURL*, void* sslContext, void* caFile) {
  X509_STORE* store = SSL_CTX_get_cert_store(static_cast<SSL_CTX*>(sslContext));
  const auto* path = static_cast<const std::filesystem::path*>(caFile);
  return X509_STORE_load_file(store, path->c_str()) == 1 ? CURLE_OK : CURLE_SSL_CACERT_BADFILE;
}

}  // namespace

struct CurlTransport::State {
  explicit State(TransportOptions opts) : options(std::move(opts)) {}

  TransportOptions options;
  CURLM* multi = nullptr;
  std::thread worker;
  std::thread::id workerId;
  std::atomic<bool> stopping{false};
  std::atomic<std::int64_t> connectionsOpened{0};

  std::mutex mutex;
  TransferId nextId = 1;
  std::vector<std::unique_ptr<Transfer>> waiting;  // not yet handed to libcurl
  std::vector<TransferId> cancellations;
  std::vector<std::function<void()>> tasks;
  std::vector<std::pair<Clock::time_point, std::function<void()>>> timers;
  std::map<std::string, Clock::time_point> lastAnswer;

  // Worker-thread only.
  std::map<TransferId, std::unique_ptr<Transfer>> active;
  // Easy handles of finished transfers, reset, for the next ones: a new handle
  // allocates (and a cleaned-up one frees) its buffers on every request.
  std::vector<CURL*> idle;
  static constexpr std::size_t kIdleHandles = 8;

  void run();
  /// Origins with a connection-warming ping on the wire.
  std::set<std::string> warmingOrigins() const;
  /// When a waiting transfer starts: when due, or, while a ping to its origin
  /// is on the wire, once that ping has ended or connectTimeout after it was due.
  Clock::time_point startsAt(const Transfer& transfer, const std::set<std::string>& warming) const;
  void startDueTransfers(Clock::time_point now);
  void start(std::unique_ptr<Transfer> transfer);
  void applyCancellations(std::vector<std::unique_ptr<Transfer>>& finished);
  void collectFinished(std::vector<std::unique_ptr<Transfer>>& finished);
  /// Keeps the handle of a transfer that libcurl no longer drives.
  void recycle(Transfer& transfer);
  int pollTimeoutMs(Clock::time_point now);
  void wake() {
    if (multi) curl_multi_wakeup(multi);
  }
};

void CurlTransport::State::start(std::unique_ptr<Transfer> transfer) {
  CURL* easy = nullptr;
  if (idle.empty()) {
    easy = curl_easy_init();
  } else {
    easy = idle.back();
    idle.pop_back();
  }
  transfer->easy = easy;
  const HttpRequest& request = transfer->request;
  curl_easy_setopt(easy, CURLOPT_URL, request.url.c_str());
  if (request.requestTarget) curl_easy_setopt(easy, CURLOPT_REQUEST_TARGET, request.requestTarget->c_str());
  curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(easy, CURLOPT_SSL_VERIFYHOST, 2L);
  curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  if (options.extraCaFile) {
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_FUNCTION, &addExtraCa);
    curl_easy_setopt(easy, CURLOPT_SSL_CTX_DATA, &*options.extraCaFile);
  }
  curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
  const auto timeout = std::max(std::min(options.totalTimeout, request.timeout.value_or(options.totalTimeout)),
                                std::chrono::milliseconds(1));
  curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(timeout.count()));
  curl_easy_setopt(easy, CURLOPT_LOW_SPEED_LIMIT, options.lowSpeedLimit);
  curl_easy_setopt(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(options.lowSpeedTime.count()));
  curl_easy_setopt(easy, CURLOPT_TCP_KEEPALIVE, 1L);
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, transfer->errorText);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &appendBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &collectHeader);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, transfer.get());
  curl_easy_setopt(easy, CURLOPT_PRIVATE, transfer.get());

  if (!request.body && request.method != "POST") {
    // No body and no Content-Length, whatever the method.
    curl_easy_setopt(easy, CURLOPT_HTTPGET, 1L);
    if (request.method != "GET") curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
  } else {
    if (request.method != "POST") curl_easy_setopt(easy, CURLOPT_CUSTOMREQUEST, request.method.c_str());
    const std::string& body = request.body ? *request.body : std::string();
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, request.body ? request.body->data() : "");
  }
  for (const auto& [name, value] : request.headers) {
    transfer->headerList = curl_slist_append(transfer->headerList, (name + ": " + value).c_str());
  }
  // No "Expect: 100-continue" round trip before a body.
  transfer->headerList = curl_slist_append(transfer->headerList, "Expect:");
  curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer->headerList);

  const TransferId id = transfer->id;
  active.emplace(id, std::move(transfer));
  curl_multi_add_handle(multi, easy);
}

std::set<std::string> CurlTransport::State::warmingOrigins() const {
  std::set<std::string> warming;
  for (const auto& [id, transfer] : active) {
    if (transfer->request.keepsConnectionWarm && !transfer->origin.empty()) warming.insert(transfer->origin);
  }
  return warming;
}

Clock::time_point CurlTransport::State::startsAt(const Transfer& transfer, const std::set<std::string>& warming) const {
  if (transfer.request.keepsConnectionWarm || !warming.contains(transfer.origin)) return transfer.due;
  return transfer.due + options.connectTimeout;
}

void CurlTransport::State::startDueTransfers(Clock::time_point now) {
  std::vector<std::unique_ptr<Transfer>> due;
  const auto warming = warmingOrigins();
  {
    std::lock_guard lock(mutex);
    auto notDue = std::stable_partition(waiting.begin(), waiting.end(), [&](const auto& transfer) {
      return startsAt(*transfer, warming) <= now;
    });
    std::move(waiting.begin(), notDue, std::back_inserter(due));
    waiting.erase(waiting.begin(), notDue);
  }
  for (auto& transfer : due) start(std::move(transfer));
}

void CurlTransport::State::applyCancellations(std::vector<std::unique_ptr<Transfer>>& finished) {
  std::vector<TransferId> ids;
  {
    std::lock_guard lock(mutex);
    ids.swap(cancellations);
    for (TransferId id : ids) {
      auto it = std::find_if(waiting.begin(), waiting.end(), [id](const auto& t) { return t->id == id; });
      if (it == waiting.end()) continue;
      (*it)->outcome.failure = TransportFailure{CURLE_ABORTED_BY_CALLBACK, "cancelled"};
      finished.push_back(std::move(*it));
      waiting.erase(it);
    }
  }
  for (TransferId id : ids) {
    auto it = active.find(id);
    if (it == active.end()) continue;
    curl_multi_remove_handle(multi, it->second->easy);
    it->second->outcome.failure = TransportFailure{CURLE_ABORTED_BY_CALLBACK, "cancelled"};
    finished.push_back(std::move(it->second));
    active.erase(it);
  }
}

void CurlTransport::State::collectFinished(std::vector<std::unique_ptr<Transfer>>& finished) {
  int remaining = 0;
  while (CURLMsg* message = curl_multi_info_read(multi, &remaining)) {
    if (message->msg != CURLMSG_DONE) continue;
    Transfer* raw = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &raw);
    const CURLcode result = message->data.result;
    curl_multi_remove_handle(multi, message->easy_handle);
    auto it = active.find(raw->id);
    if (it == active.end()) continue;
    auto transfer = std::move(it->second);
    active.erase(it);

    long connects = 0;
    curl_easy_getinfo(transfer->easy, CURLINFO_NUM_CONNECTS, &connects);
    connectionsOpened += connects;
    if (result == CURLE_OK) {
      long status = 0;
      curl_easy_getinfo(transfer->easy, CURLINFO_RESPONSE_CODE, &status);
      transfer->outcome.status = status;
      if (!transfer->origin.empty()) {
        std::lock_guard lock(mutex);
        lastAnswer[transfer->origin] = Clock::now();
      }
    } else {
      const std::string detail = transfer->errorText[0] ? transfer->errorText : curl_easy_strerror(result);
      transfer->outcome.failure = TransportFailure{static_cast<int>(result), detail};
      transfer->outcome.body.clear();
    }
    finished.push_back(std::move(transfer));
  }
}

void CurlTransport::State::recycle(Transfer& transfer) {
  if (!transfer.easy || idle.size() >= kIdleHandles) return;
  curl_easy_reset(transfer.easy);  // every option back to its default, the connection pool untouched
  idle.push_back(std::exchange(transfer.easy, nullptr));
}

int CurlTransport::State::pollTimeoutMs(Clock::time_point now) {
  auto timeout = std::chrono::milliseconds(1000);
  const auto warming = warmingOrigins();
  std::lock_guard lock(mutex);
  auto wait = [&](Clock::time_point due) {
    auto untilDue = std::chrono::ceil<std::chrono::milliseconds>(due - now);
    timeout = std::min(timeout, std::max(untilDue, std::chrono::milliseconds(0)));
  };
  for (const auto& transfer : waiting) wait(startsAt(*transfer, warming));
  for (const auto& timer : timers) wait(timer.first);
  return static_cast<int>(timeout.count());
}

void CurlTransport::State::run() {
  while (!stopping) {
    std::vector<std::unique_ptr<Transfer>> finished;
    applyCancellations(finished);
    startDueTransfers(Clock::now());
    int running = 0;
    curl_multi_perform(multi, &running);
    collectFinished(finished);
    std::vector<std::function<void()>> posted;
    {
      std::lock_guard lock(mutex);
      posted.swap(tasks);
      const auto now = Clock::now();
      auto notDue = std::stable_partition(timers.begin(), timers.end(),
                                          [now](const auto& timer) { return timer.first <= now; });
      for (auto timer = timers.begin(); timer != notDue; ++timer) posted.push_back(std::move(timer->second));
      timers.erase(timers.begin(), notDue);
    }
    for (auto& task : posted) {
      if (stopping) break;
      task();
    }
    for (auto& transfer : finished) {
      if (stopping) break;
      auto completion = std::move(transfer->completion);
      HttpOutcome outcome = std::move(transfer->outcome);
      recycle(*transfer);
      transfer.reset();
      completion(std::move(outcome));
    }
    if (stopping) break;
    if (!finished.empty() || !posted.empty()) continue;  // they may have queued more work
    curl_multi_poll(multi, nullptr, 0, pollTimeoutMs(Clock::now()), nullptr);
  }
  for (auto& [id, transfer] : active) curl_multi_remove_handle(multi, transfer->easy);
  active.clear();
  std::lock_guard lock(mutex);
  waiting.clear();
  tasks.clear();
  timers.clear();
  for (CURL* easy : idle) curl_easy_cleanup(easy);
  idle.clear();
  curl_multi_cleanup(multi);
  multi = nullptr;
}

CurlTransport::CurlTransport(TransportOptions options) : state_(std::make_shared<State>(std::move(options))) {
  initialiseCurlOnce();
  state_->multi = curl_multi_init();
  curl_multi_setopt(state_->multi, CURLMOPT_MAX_HOST_CONNECTIONS, 6L);
  // The thread keeps the state alive, so that a transport destroyed from
  // inside one of its own completions can let the thread finish by itself.
  state_->worker = std::thread([state = state_] { state->run(); });
  state_->workerId = state_->worker.get_id();
}

CurlTransport::~CurlTransport() {
  state_->stopping = true;
  {
    std::lock_guard lock(state_->mutex);
    state_->wake();
  }
  if (std::this_thread::get_id() == state_->workerId) {
    state_->worker.detach();
  } else {
    state_->worker.join();
  }
}

CurlTransport::TransferId CurlTransport::send(HttpRequest request, Completion completion,
                                              std::chrono::milliseconds delay) {
  auto transfer = std::make_unique<Transfer>();
  transfer->origin = originOf(request.url).value_or("");
  transfer->request = std::move(request);
  transfer->completion = std::move(completion);
  transfer->due = Clock::now() + delay;
  std::lock_guard lock(state_->mutex);
  transfer->id = state_->nextId++;
  const TransferId id = transfer->id;
  state_->waiting.push_back(std::move(transfer));
  state_->wake();
  return id;
}

void CurlTransport::post(std::function<void()> task) {
  std::lock_guard lock(state_->mutex);
  state_->tasks.push_back(std::move(task));
  state_->wake();
}

void CurlTransport::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  std::lock_guard lock(state_->mutex);
  state_->timers.emplace_back(Clock::now() + delay, std::move(task));
  state_->wake();
}

void CurlTransport::cancel(TransferId transfer) {
  std::lock_guard lock(state_->mutex);
  state_->cancellations.push_back(transfer);
  state_->wake();
}

std::int64_t CurlTransport::connectionsOpened() const { return state_->connectionsOpened.load(); }

const TransportOptions& CurlTransport::options() const { return state_->options; }

std::optional<Clock::time_point> CurlTransport::lastAnswered(const std::string& origin) const {
  std::lock_guard lock(state_->mutex);
  const auto found = state_->lastAnswer.find(origin);
  if (found == state_->lastAnswer.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> originOf(const std::string& url) {
  CURLU* parsed = curl_url();
  if (!parsed) return std::nullopt;
  std::optional<std::string> origin;
  if (curl_url_set(parsed, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK) {
    char* scheme = nullptr;
    char* host = nullptr;
    char* port = nullptr;
    if (curl_url_get(parsed, CURLUPART_SCHEME, &scheme, 0) == CURLUE_OK &&
        curl_url_get(parsed, CURLUPART_HOST, &host, 0) == CURLUE_OK &&
        curl_url_get(parsed, CURLUPART_PORT, &port, CURLU_DEFAULT_PORT) == CURLUE_OK) {
      const std::string protocol = scheme;
      if (protocol == "http" || protocol == "https") origin = protocol + "://" + host + ":" + port + "/";
    }
    curl_free(scheme);
    curl_free(host);
    curl_free(port);
  }
  curl_url_cleanup(parsed);
  return origin;
}

bool TransportFailure::certificateRejected() const { return code == CURLE_PEER_FAILED_VERIFICATION; }

}  // namespace varnel::standalone
