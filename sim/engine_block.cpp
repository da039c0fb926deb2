#include "sim/engine_block.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

namespace sim {
namespace {

struct decoder_place_t {
  videng::depayloader_e kind;
  int32_t instance;
};

constexpr std::array decoders{
    decoder_place_t{videng::depayloader_visengi, 0},          decoder_place_t{videng::depayloader_visengi, 1},
    decoder_place_t{videng::depayloader_mediacast_rtsp, 0},   decoder_place_t{videng::depayloader_mediacast_rtsp, 1},
    decoder_place_t{videng::depayloader_mediacast_file, 0},   decoder_place_t{videng::depayloader_mediacast_dmabuf, 0},
    decoder_place_t{videng::depayloader_mediacast_dmabuf, 1},
};

void fill(const videng::status_block_t& block) {
  for (std::size_t index = 0; index < decoders.size(); ++index) {
    block.decoder(index).type().store(decoders[index].kind);
    block.decoder(index).instance().store(decoders[index].instance);
  }
  for (std::size_t n = 0; n < videng::raw_outs.count; ++n) {
    block.set_name(videng::raw_outs, n, "zvid-raw-frame_inject_in_" + std::to_string(n));
  }
  block.set_name(videng::mc_hdmi_outs, 0, "mediacast-hdmi1-composite");
}

}  // namespace

descriptor_t make_shared_memory(std::size_t size) {
  descriptor_t memory(memfd_create("video-engine-status", MFD_CLOEXEC));
  if (!memory || ftruncate(memory.get(), static_cast<off_t>(size)) != 0) {
    throw std::system_error(errno, std::generic_category(), "no memory for the video engine's status");
  }
  return memory;
}

engine_block_t::engine_block_t()
    : memory(make_shared_memory(videng::status_block_t::size)), mapping(memory.get(), videng::status_block_t::size) {
  if (!mapping.mapped()) {
    throw std::system_error(errno, std::generic_category(), "cannot map the video engine's status");
  }
  fill(view());
}

}  // namespace sim
