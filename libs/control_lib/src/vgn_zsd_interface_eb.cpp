#include "control_lib/src/vgn_zsd_interface_eb.h"

#include <utility>

#include "zyl/post.h"

namespace control_lib {

vgn_zsd_interface_eb_t::vgn_zsd_interface_eb_t(event_base* loop_base, int /*unused*/,
                                               std::unique_ptr<vgn::system_t> streamer)
    : vgn_zsd_interface_t(loop_base, streamer ? std::move(streamer) : std::make_unique<vgn::system_t>(loop_base)),
      base(loop_base) {}

void vgn_zsd_interface_eb_t::post(std::function<void()> call) {
  zyl::post(base, [alive = std::weak_ptr<const bool>(life), call = std::move(call)] {
    if (!alive.expired()) {
      call();
    }
  });
}

bool vgn_zsd_interface_eb_t::is_owner_thread() const { return std::this_thread::get_id() == owner; }

}  // namespace control_lib
