#pragma once

#include <QObject>
#include <memory>

namespace vgn_control {

class vgn_streamer_proxy;

/// Hosts the video proxy on a thread. Has no parent, so that it can move there.
class StreamerController : public QObject {
  Q_OBJECT

 public:
  /// `owner`: whom the proxy tells of the outputs' modes; see `vgn_streamer_proxy`.
  explicit StreamerController(QObject* owner);

  /// Hosts the given proxy.
  explicit StreamerController(std::unique_ptr<vgn_streamer_proxy> video_side);
  ~StreamerController() override;

  /// Ends `start`. Any thread, directly: the thread that `start` holds delivers no queued call.
  void stop();

 Q_SIGNALS:
  void finished();

 public Q_SLOTS:
  /// Runs the video side on the calling thread until `stop`, then emits `finished`.
  void start();

  /// A design has stopped, or runs: passed on to the proxy, which bears repeats. Any thread, directly.
  void designStopped();
  void designRunning();

 private:
  std::unique_ptr<vgn_streamer_proxy> proxy;
};

}  // namespace vgn_control
