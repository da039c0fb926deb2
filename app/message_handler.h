#pragma once

#include <syslog.h>

#include <QDateTime>
#include <QString>
#include <QtGlobal>
#include <atomic>
#include <cstdint>

namespace vgn_control {

/// The highest syslog priority that `messageHandler` lets through; warnings and worse unless `--verbose` raised it.
inline std::atomic<int32_t> log_threshold{LOG_USER | LOG_WARNING};

/// The syslog priority, facility and level in one number, of a Qt message type. A type that Qt does not have yet is
/// `LOG_USER | LOG_EMERG`, which passes any threshold.
int32_t syslogPriority(QtMsgType type);

/// Decides which messages of one thread are printed: what is above the threshold is not, and a text that repeats the
/// last printed one is printed again only when that was five seconds ago or more.
class RepeatFilter {
 public:
  /// What to do with a message.
  struct Verdict {
    bool print = false;
    uint64_t repeats = 0;         ///< repeats of the text before, to be told ahead of this message; 0 for none
    int32_t repeat_priority = 0;  ///< the priority that the repeated text had
  };

  /// `now`: the time of the thread's first message.
  explicit RepeatFilter(const QDateTime& now) : last_time(now) {}

  /// Judges the thread's next message. A repeat counts even when it is not printed.
  Verdict judge(const QString& text, int32_t priority, int32_t threshold, const QDateTime& now);

 private:
  QString last_message;
  QDateTime last_time;
  uint64_t repeat_count = 0;
  int32_t last_priority = 0;
};

/// The Qt message handler of the program: syslog and, with a time stamp in UTC, standard output. Any thread; each has
/// its own `RepeatFilter`, so that threads do not suppress each other's messages; none is left for what an ending
/// thread says after it has let go of it.
void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& text);

}  // namespace vgn_control
