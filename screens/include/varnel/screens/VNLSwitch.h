#pragma once
// An on/off switch in the platform's look: a rounded track with a knob,
// checkable like a check box (toggled(bool) is its value-changed signal).
// setOn() changes the value without sending toggled, as a program setting a
// switch does; a tester's click sends it.

#include <QAbstractButton>

namespace varnel {

class VNLSwitch : public QAbstractButton {
  Q_OBJECT

 public:
  explicit VNLSwitch(QWidget* parent = nullptr);

  bool isOn() const { return isChecked(); }
  /// Sets the value quietly (no toggled signal).
  void setOn(bool on);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace varnel
