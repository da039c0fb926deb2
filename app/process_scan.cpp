#include "app/process_scan.h"

#include <dirent.h>

#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <memory>
#include <optional>

namespace vgn_control {
namespace {

constexpr int expected_matches = 32;

struct close_directory_t {
  void operator()(DIR* directory) const { closedir(directory); }
};

// The name of a process as it is compared; none if it cannot be read, because the process has gone for one.
std::optional<QString> commOf(const QString& id) {
  QFile file(QStringLiteral("/proc/%1/comm").arg(id));
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
    return {};
  }
  return QTextStream(&file).readAll().remove('\n').trimmed();
}

}  // namespace

bool isProcessEntry(std::string_view entry) {
  return std::all_of(entry.begin(), entry.end(), [](char c) { return c >= '0' && c <= '9'; });
}

QStringList processesNamed(const QByteArray& name) {
  const std::unique_ptr<DIR, close_directory_t> directory(opendir("/proc/"));
  if (!directory) {
    qFatal("Failed to open /proc");
  }
  const QString wanted = QString::fromLocal8Bit(name);
  QStringList ids;
  ids.reserve(expected_matches);
  while (const dirent* entry = readdir(directory.get())) {
    if (!isProcessEntry(entry->d_name)) {
      continue;
    }
    const QString id = QString::fromLocal8Bit(entry->d_name);
    if (commOf(id) == wanted) {
      ids.append(id);
    }
  }
  return ids;
}

}  // namespace vgn_control
