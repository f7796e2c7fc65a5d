#pragma once

#include <QString>
#include <string>

namespace corvane {

// The program's texts are UTF-8.
inline QString Shown(const std::string& text) {
  return QString::fromStdString(text);
}
inline std::string Plain(const QString& text) {
  return text.toStdString();
}

}  // namespace corvane
