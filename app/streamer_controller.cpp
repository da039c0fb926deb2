#include "app/streamer_controller.h"

#include <utility>

#include "app/logging.h"
#include "app/vgn_streamer_proxy.h"

namespace vgn_control {

StreamerController::StreamerController(QObject* owner)
    : StreamerController(std::make_unique<vgn_streamer_proxy>(owner)) {}

StreamerController::StreamerController(std::unique_ptr<vgn_streamer_proxy> video_side) : proxy(std::move(video_side)) {}

StreamerController::~StreamerController() = default;

void StreamerController::stop() { proxy->stop(); }

void StreamerController::start() {
  qCInfo(controlLog) << "StreamerController started";
  proxy->run();
  Q_EMIT finished();
}

void StreamerController::designStopped() { proxy->set_design_stopped(); }

void StreamerController::designRunning() { proxy->set_design_running(); }

}  // namespace vgn_control
