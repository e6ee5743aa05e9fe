#pragma once
// A stack of screens with a title bar and a back button, as the host shows
// the tester screens: the configuration screen at the bottom, the screens it
// opens pushed over it. The bar shows the top screen's window title.

#include <QWidget>

#include <memory>

class QLabel;
class QStackedWidget;
class QToolButton;

namespace varnel {

class VNLNavigationController : public QWidget {
  Q_OBJECT

 public:
  explicit VNLNavigationController(QWidget* parent = nullptr);

  /// The nearest navigation controller that holds `screen`; null when none.
  static VNLNavigationController* of(const QWidget* screen);
  /// Pushes `screen` on the navigation controller that holds `from`, or shows
  /// it in a window of its own when there is none.
  static void showScreen(const QWidget* from, std::unique_ptr<QWidget> screen);

  /// Takes `screen` and shows it over the current one.
  void push(std::unique_ptr<QWidget> screen);
  /// Removes the top screen unless it is the only one.
  void pop();

  QWidget* topViewController() const;
  int depth() const;

 private:
  void updateBar();

  QToolButton* backButton_;
  QLabel* titleLabel_;
  QStackedWidget* stack_;
};

}  // namespace varnel
