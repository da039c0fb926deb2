#include "app/vgn_control_main.h"

#include <syslog.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include "app/message_handler.h"
#include "app/vgn_control.h"
#include "zyl/fatal_signal.h"
#include "zyl/log/setup_logging.h"

namespace vgn_control {
namespace {

/// The connection to syslog that the message handler uses.
class SyslogConnection {
 public:
  SyslogConnection() { openlog("vgn_control", 0, LOG_USER); }
  ~SyslogConnection() { closelog(); }

  SyslogConnection(const SyslogConnection&) = delete;
  SyslogConnection& operator=(const SyslogConnection&) = delete;
};

int run(int argc, char** argv) {
  zyl::install_fatal_signal_handler(argv[0]);
  zyl::setup_logging("vgn_control", true, "");
  const SyslogConnection syslog_connection;
  qInstallMessageHandler(messageHandler);

  QCoreApplication app(argc, argv);
  QCoreApplication::setApplicationName("VGN control");
  QCoreApplication::setApplicationVersion("1.0");

  QCommandLineParser parser;
  parser.setApplicationDescription("VGN control application");
  parser.addHelpOption();
  const QCommandLineOption input({"i", "input"}, QCoreApplication::translate("main", "Path to the input device."),
                                 "input");
  parser.addOption(input);
  const QCommandLineOption verbose({"v", "verbose"}, QCoreApplication::translate("main", "verbose logging"));
  parser.addOption(verbose);
  parser.process(app);
  if (parser.isSet(verbose)) {
    log_threshold.store(LOG_USER | LOG_DEBUG, std::memory_order_release);
  }

  const QString input_path = parser.value(input);
  VgnControl control(input_path, nullptr);
  return QCoreApplication::exec();
}

}  // namespace

int vgn_control_main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (...) {
    // An exception that nobody catches ends the process where it is thrown; so it leaves by way of the destructors.
    throw;
  }
}

}  // namespace vgn_control
