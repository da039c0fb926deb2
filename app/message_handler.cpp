#include "app/message_handler.h"

#include <QTextStream>
#include <cstdio>
#include <utility>

namespace vgn_control {
namespace {

constexpr qint64 repeat_silence_s = 4;

QString timeStamp(const QDateTime& now) { return now.toTimeSpec(Qt::OffsetFromUTC).toString(Qt::ISODateWithMs); }

QString repeatNote(uint64_t repeats) {
  QString note;
  QTextStream(&note) << " (last message repeated " << quint64{repeats} << " times)\n";
  return note;
}

void sendToSyslog(int32_t priority, const QString& text) { syslog(priority, "%s", text.toLocal8Bit().constData()); }

void print(const QString& line) { QTextStream(stdout, QIODevice::ReadWrite) << line << Qt::flush; }

// Has no destructor, so it can still be read when the thread's filter is gone.
thread_local bool filter_gone = false;

struct ThreadFilter {
  RepeatFilter filter;
  ~ThreadFilter() { filter_gone = true; }
};

RepeatFilter::Verdict judgeOnThread(const QString& text, int32_t priority, const QDateTime& now) {
  const int32_t threshold = log_threshold.load(std::memory_order_acquire);
  if (filter_gone) {
    return RepeatFilter(now).judge(text, priority, threshold, now);
  }
  thread_local ThreadFilter mine{RepeatFilter(now)};
  return mine.filter.judge(text, priority, threshold, now);
}

}  // namespace

int32_t syslogPriority(QtMsgType type) {
  switch (type) {
    case QtDebugMsg:
      return LOG_USER | LOG_DEBUG;
    case QtWarningMsg:
      return LOG_USER | LOG_WARNING;
    case QtCriticalMsg:
      return LOG_USER | LOG_CRIT;
    case QtFatalMsg:
      return LOG_USER | LOG_ALERT;
    case QtInfoMsg:
      return LOG_USER | LOG_NOTICE;
  }
  return LOG_USER | LOG_EMERG;
}

RepeatFilter::Verdict RepeatFilter::judge(const QString& text, int32_t priority, int32_t threshold,
                                          const QDateTime& now) {
  if (text == last_message) {
    ++repeat_count;
    if (last_time.secsTo(now) <= repeat_silence_s) {
      return {};
    }
  }
  if (priority > threshold) {
    return {};
  }
  const Verdict verdict{true, std::exchange(repeat_count, 0), last_priority};
  last_time = now;
  last_message = text;
  last_priority = priority;
  return verdict;
}

void messageHandler(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
  const QDateTime now = QDateTime::currentDateTime();
  const int32_t priority = syslogPriority(type);
  const auto verdict = judgeOnThread(text, priority, now);
  if (!verdict.print) {
    return;
  }
  const QString head = timeStamp(now) + " : ";
  if (verdict.repeats != 0) {
    const QString note = repeatNote(verdict.repeats);
    print(head + note);
    sendToSyslog(verdict.repeat_priority, note);
  }
  sendToSyslog(priority, text);
  print(head + text + '\n');
}

}  // namespace vgn_control
