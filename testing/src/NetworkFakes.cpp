#include "varnel/testing/NetworkFakes.h"

namespace varnel::testing {

void FakePrivateDataService::getDataUsingEndpoint(std::string_view endpointKey, const KTVRTokens& tokens,
                                                  const std::optional<Json>& parameters, KTVRSuccessBlock success,
                                                  KTVRFailureBlock failure) {
  calls.push_back({"GET endpoint", std::string(endpointKey), tokens, parameters, {}, std::move(success),
                   std::move(failure)});
}

void FakePrivateDataService::getDataUsingPath(const std::string& url, const std::optional<Json>& parameters,
                                              const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                              KTVRFailureBlock failure) {
  calls.push_back({"GET", url, {}, parameters, overrideHeaders, std::move(success), std::move(failure)});
}

void FakePrivateDataService::postDataUsingPath(const std::string& url, const Json& parameters,
                                               const HTTPHeaderFields& overrideHeaders, KTVRSuccessBlock success,
                                               KTVRFailureBlock failure) {
  calls.push_back({"POST", url, {}, parameters, overrideHeaders, std::move(success), std::move(failure)});
}

void FakePrivateDataService::setAuthorizationHeaderForRequest(URLRequest& request) const {
  if (authorization) request.setValue(*authorization, "Authorization");
}

std::optional<Json> TableEnvironment::valueForKey(std::string_view key,
                                                  const std::map<std::string, std::string>& tokens) const {
  auto it = table.find(key);
  if (it == table.end()) return std::nullopt;
  if (!it->second.is_string()) return it->second;
  std::string text = it->second.get<std::string>();
  for (const auto& [name, value] : tokens) {
    const std::string placeholder = "{" + name + "}";
    for (auto at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at + value.size())) {
      text.replace(at, placeholder.size(), value);
    }
  }
  return text;
}

std::shared_ptr<URLSessionDataTask> FakeURLSession::dataTask(URLRequest request, Completion completion) {
  auto task = std::make_shared<Task>();
  task->request = std::move(request);
  task->completion = std::move(completion);
  tasks.push_back(task);
  return task;
}

void FakeURLSession::complete(std::size_t index, std::optional<std::string> data,
                              std::optional<URLResponse> response, std::optional<Error> error) {
  tasks.at(index)->completion(std::move(data), std::move(response), std::move(error));
}

}  // namespace varnel::testing
