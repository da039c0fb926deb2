#include "zyl/qt/property_monitor.h"

namespace {

std::string textOf(const QByteArray& bytes) { return {bytes.constData()}; }

QByteArray bytesOf(const std::string& text) { return {text.c_str()}; }

}  // namespace

PropertyMonitor::PropertyMonitor(const QList<QByteArray>& paths, QObject* parent) : QObject(parent) {
  // Without a service the notifier gets descriptor -1, which it only warns of: the cache works and stays empty.
  client.connect();
  notifier = std::make_unique<QSocketNotifier>(client.descriptor(), QSocketNotifier::Read, this);
  connect(notifier.get(), SIGNAL(activated(int)), SLOT(readReady(int)));
  notifier->setEnabled(true);
  addProperties(paths);
}

void PropertyMonitor::addProperties(const QList<QByteArray>& paths) {
  for (const QByteArray& path : paths) {
    values[path] = QByteArray();
    const std::string text = textOf(path);
    client.create(text);
    client.monitor(text);
    client.get(text);
  }
}

QByteArray PropertyMonitor::value(const QByteArray& path) const { return values.value(path); }

void PropertyMonitor::setValue(const QByteArray& path, const QByteArray& value) {
  if (values.contains(path)) {
    client.set(textOf(path), textOf(value));
  }
}

void PropertyMonitor::readReady(int /*descriptor*/) {
  while (client.receive(received.command, received.path, received.value, 0)) {
    take(received.command, bytesOf(received.path), bytesOf(received.value));
  }
  // A descriptor that was hung up would wake the loop without end.
  if (client.hung_up()) {
    notifier->setEnabled(false);
  }
}

void PropertyMonitor::take(const std::string& command, const QByteArray& path, const QByteArray& value) {
  if ((command == "get_response" || command == "changed") && values.contains(path)) {
    values[path] = value;
    Q_EMIT valueChanged(path, value);
  }
}
