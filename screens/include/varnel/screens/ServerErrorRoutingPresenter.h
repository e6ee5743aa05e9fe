#pragma once
// What the server-error routing screen does, without a display. A tester
// types a user name; the screen asks the tester's mock server which simulated
// endpoint and mock header belong to it, shows them, and keeps the header, the
// user name and an on/off switch in the user-defaults store, where the
// service requests read them.
//
// The presenter talks to its screen through ServerErrorRoutingView. The
// lookup goes through a URLSession whose completion runs on the session's
// thread; every control update and every write is posted to the main queue.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "varnel/platform/MainQueue.h"
#include "varnel/platform/URLSession.h"
#include "varnel/services/CommerceRequests.h"
#include "varnel/settings/ServerErrorRoutingKeys.h"

namespace varnel {

/// The controls of the screen, as the presenter sees them.
class ServerErrorRoutingView {
 public:
  virtual ~ServerErrorRoutingView() = default;
  virtual std::string usernameText() const = 0;
  virtual void setUsernameText(const std::string& text) = 0;
  virtual bool isRoutingSwitchOn() const = 0;
  virtual void setRoutingSwitchOn(bool isOn) = 0;
  virtual void setResultText(const std::string& text) = 0;
  /// Hides or shows the user-name field, the test button and the result field.
  virtual void setRoutingControlsHidden(bool hidden) = 0;
};

/// What the mock server answers for a user.
struct ServerErrorRoutingAnswer {
  std::string endpoint;
  std::string header;
  friend bool operator==(const ServerErrorRoutingAnswer&, const ServerErrorRoutingAnswer&) = default;
};

class ServerErrorRoutingPresenter : public std::enable_shared_from_this<ServerErrorRoutingPresenter> {
 public:
  static constexpr std::string_view kSERUserNameKey = "ServerErrorRoutingUserName";
  static constexpr std::string_view kSERUseFeatureKey = kServerErrorRoutingUseFeatureKey;
  /// A dictionary from header name to header value.
  static constexpr std::string_view kSERActivateRoutingKey = kServerErrorRoutingHeaderKey;
  static constexpr std::string_view kInternalMockHeader = CommerceTestHeaders::kMockAP;
  static constexpr std::string_view kHeaderLookupPath = "/mobile-commerce/index.php/rest/export/json/header?uid=";

  /// The mock server's base address ("http://host:port") that new screens
  /// use; empty until a tester sets it, then lookups are skipped.
  static std::string mockServerAddress();
  static void setMockServerAddress(std::string address);

  /// `view` must outlive the presenter; `session` and `mainQueue` may be null,
  /// and lookups are then skipped (logged).
  static std::shared_ptr<ServerErrorRoutingPresenter> create(ServerErrorRoutingView& view,
                                                             std::shared_ptr<URLSession> session,
                                                             std::shared_ptr<MainQueue> mainQueue,
                                                             std::string serverAddress = mockServerAddress());

  /// The screen appeared: load the stored values, then show or hide.
  void viewDidAppear();
  /// The test button: look up the typed user name.
  void testRoutingTapped();
  /// The switch moved: save, then show or hide.
  void serverErrorRoutingSwitchChanged();

  /// The lookup URL for `userName`, appended as typed.
  std::string lookupURL(std::string_view userName) const;
  /// Sends the lookup. On an answer that parses, shows "Endpoint: <endpoint>
  /// \nHeader: <header>" and saves the header under kInternalMockHeader, on
  /// the main queue. A failed request or an unparsable answer changes nothing.
  void fetchData(const std::string& userName);

  /// The endpoint and header of an answer: {"field_endpoint": {"value": ..},
  /// "field_simulator_header": {"value": ..}}, where each field may also be a
  /// list of records and the answer a list of such objects (the first one
  /// counts). Anything else logs "Failed to parse JSON" and gives none.
  static std::optional<ServerErrorRoutingAnswer> parseJSONString(std::string_view json);

  /// Writes the typed user name and the switch, the { header: headerValue }
  /// dictionary when both are given (else removes it), then synchronises.
  void saveDefaults(const std::optional<std::string>& header, const std::optional<std::string>& headerValue);
  /// Puts the stored user name, header and switch into the controls.
  void loadDefaults();
  /// The routing controls are shown only while the switch is on, and the
  /// result shows the stored header only: none once the header is removed.
  void updateUI();

  static std::string resultText(std::string_view endpoint, std::string_view header);

 private:
  ServerErrorRoutingPresenter(ServerErrorRoutingView& view, std::shared_ptr<URLSession> session,
                              std::shared_ptr<MainQueue> mainQueue, std::string serverAddress);
  void showAnswer(const ServerErrorRoutingAnswer& answer);
  /// The result text of the stored header, if one is stored.
  static std::optional<std::string> storedResultText();

  ServerErrorRoutingView& view_;
  std::shared_ptr<URLSession> session_;
  std::shared_ptr<MainQueue> mainQueue_;
  std::string serverAddress_;
};

}  // namespace varnel
