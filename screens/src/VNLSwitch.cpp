#include "varnel/screens/VNLSwitch.h"

#include <QPainter>
#include <QSignalBlocker>

namespace varnel {

VNLSwitch::VNLSwitch(QWidget* parent) : QAbstractButton(parent) {
  setCheckable(true);
  setCursor(Qt::PointingHandCursor);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void VNLSwitch::setOn(bool on) {
  const QSignalBlocker quiet(this);
  setChecked(on);
}

QSize VNLSwitch::sizeHint() const { return {46, 26}; }

void VNLSwitch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF track = QRectF(rect()).adjusted(1, 1, -1, -1);
  const qreal radius = track.height() / 2;
  QColor trackColor = isChecked() ? QColor(52, 168, 83) : QColor(200, 200, 204);
  if (!isEnabled()) trackColor.setAlpha(90);
  painter.setPen(Qt::NoPen);
  painter.setBrush(trackColor);
  painter.drawRoundedRect(track, radius, radius);

  const qreal knobSize = track.height() - 4;
  const qreal knobX = isChecked() ? track.right() - knobSize - 2 : track.left() + 2;
  painter.setBrush(isEnabled() ? QColor(Qt::white) : QColor(245, 245, 245));
  painter.setPen(QPen(QColor(0, 0, 0, 40), 1));
  painter.drawEllipse(QRectF(knobX, track.top() + 2, knobSize, knobSize));
}

}  // namespace varnel
