#include "app/published_resolution.h"

#include <QRegularExpression>
#include <cmath>
#include <utility>

namespace vgn_control {
namespace {

constexpr int full_width = 1920;
constexpr int full_height = 1080;

QRegularExpressionMatch matchSize(const QString& text) {
  static const QRegularExpression size(QStringLiteral("^(\\d+)x(\\d+)"));
  return size.match(text);
}

int half(int length) { return static_cast<int>(std::ceil(length * 0.5)); }

std::pair<int, int> reduced(int width, int height) {
  if (width <= full_width && height <= full_height) {
    return {width, height};
  }
  return {half(width), half(height)};
}

}  // namespace

QString leadingResolution(const QString& properties) { return matchSize(properties).captured(0); }

QString publishedResolution(const QString& resolution) {
  const auto match = matchSize(resolution);
  bool width_ok = false;
  bool height_ok = false;
  const int width = match.captured(1).toInt(&width_ok);
  const int height = match.captured(2).toInt(&height_ok);
  if (!width_ok || !height_ok) {
    return resolution;
  }
  const auto size = reduced(width, height);
  return QStringLiteral("%1x%2").arg(size.first).arg(size.second);
}

}  // namespace vgn_control
