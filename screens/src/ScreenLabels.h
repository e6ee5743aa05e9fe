#pragma once
// Row labels of the tester screens: the row's title over the user-defaults or
// business-requirement key that it stands for, in small grey text.

#include <QLabel>
#include <QString>

#include <string_view>

namespace varnel::screens_detail {

inline void showKeyUnderTitle(QLabel* label, std::string_view key) {
  label->setTextFormat(Qt::RichText);
  label->setText(QStringLiteral("%1<br><span style=\"color:#6b6b70; font-size:small;\">%2</span>")
                     .arg(label->text().toHtmlEscaped(),
                          QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())).toHtmlEscaped()));
}

}  // namespace varnel::screens_detail
