#pragma once
// The server-error routing screen: a switch, the tester's user name, a lookup
// at the mock server and the header it returned (ServerErrorRoutingPresenter).
// The lookup goes through the registered URLSession, or through Qt's network
// access when the host registered none; its answer is shown and saved on the
// Qt event loop's thread.

#include <QWidget>

#include <memory>

#include "varnel/screens/ServerErrorRoutingPresenter.h"

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace Ui {
class ServerErrorRoutingDebugViewController;
}

namespace varnel {

class VNLSwitch;

class ServerErrorRoutingDebugViewController : public QWidget, public ServerErrorRoutingView {
  Q_OBJECT

 public:
  static constexpr std::string_view kSERUserNameKey = ServerErrorRoutingPresenter::kSERUserNameKey;
  static constexpr std::string_view kSERUseFeatureKey = ServerErrorRoutingPresenter::kSERUseFeatureKey;
  static constexpr std::string_view kSERActivateRoutingKey = ServerErrorRoutingPresenter::kSERActivateRoutingKey;
  static constexpr std::string_view kInternalMockHeader = ServerErrorRoutingPresenter::kInternalMockHeader;

  explicit ServerErrorRoutingDebugViewController(QWidget* parent = nullptr);
  ~ServerErrorRoutingDebugViewController() override;

  QLineEdit* usernameField() const;
  VNLSwitch* useServerErrorRoutingSwitch() const;
  QPushButton* testRoutingButton() const;
  QPlainTextEdit* resultTextField() const;
  ServerErrorRoutingPresenter& presenter() const { return *presenter_; }

  // ServerErrorRoutingView
  std::string usernameText() const override;
  void setUsernameText(const std::string& text) override;
  bool isRoutingSwitchOn() const override;
  void setRoutingSwitchOn(bool isOn) override;
  void setResultText(const std::string& text) override;
  void setRoutingControlsHidden(bool hidden) override;

 public slots:
  void testRoutingTapped();
  void serverErrorRoutingSwitchChanged(bool isOn);
  /// Return in the user-name field dismisses the keyboard focus.
  void textFieldShouldReturn();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  std::unique_ptr<Ui::ServerErrorRoutingDebugViewController> ui_;
  std::shared_ptr<URLSession> qtSession_;
  std::shared_ptr<ServerErrorRoutingPresenter> presenter_;
};

}  // namespace varnel
