#pragma once

#include <functional>
#include <memory>
#include <thread>

#include "control_lib/src/vgn_zsd_interface.h"

namespace control_lib {

/// The HDMI interface on an event loop. Its owner is the thread that constructs it, which must also run the loop.
class vgn_zsd_interface_eb_t : public vgn_zsd_interface_t {
 public:
  /// `base` must outlive the interface. The second argument is not used. A null `streamer` is the machine's own, found
  /// by udev.
  explicit vgn_zsd_interface_eb_t(event_base* loop_base, int unused = 6,
                                  std::unique_ptr<vgn::system_t> streamer = nullptr);

 protected:
  void post(std::function<void()> call) override;
  bool is_owner_thread() const override;

 private:
  event_base* base;
  std::thread::id owner = std::this_thread::get_id();
  // Dies with the interface, which calls that are still posted then see.
  std::shared_ptr<const bool> life = std::make_shared<const bool>(true);
};

}  // namespace control_lib
