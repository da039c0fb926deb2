#include "app/vgn_control_main.h"

#include <syslog.h>

#include <QCommandLineParser>
#include <QCoreApplication>

#include "app/message_handler.h"
#include "app/vgn_control.h"
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

}  // namespace

int vgn_control_main(int argc, char** argv) {
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

  const VgnControl control(parser.value(input), nullptr);
  return QCoreApplication::exec();
}

}  // namespace vgn_control
