#pragma once

#include <linux/ioctl.h>

#include <cstddef>
#include <cstdint>

/// The streamer driver's own words: the requests, records and event records of its misc device.
///
/// All records are in native little-endian order and have no padding of their own but where a field says so. Resource
/// ids are the driver's; inputs and outputs share one number space.
namespace vgn {

/// What an input is, in `resource_record_t::kind`.
enum class input_kind_e : uint32_t {
  hdmi_in = 0,
  inject = 1,
  encoder = 2,
  decoder = 3,
  hdmi_mux_in = 4,
  mediacast = 5,
  lbr_v4l2 = 6,
};

/// What an output is, in `resource_record_t::kind`.
enum class output_kind_e : uint32_t {
  hdmi_out = 0,
  capture = 1,
};

/// Authentication of the content protection, in `hdcp_record_t`.
enum class hdcp_auth_e : uint32_t { off = 0, busy = 1, hdcp_14 = 2, hdcp_22 = 3, failure = 4 };

/// Encryption of the content protection, in `hdcp_record_t`.
enum class hdcp_enc_e : uint32_t { off = 0, busy = 1, success = 2, failure = 3 };

/// `resources_request`. First call with null pointers: the driver writes the two counts. Second call with the counts
/// and the addresses of two arrays of u32: it writes the ids, at most as many as were asked for, and their counts.
struct resources_record_t {
  uint32_t input_count;
  uint32_t output_count;
  uint64_t input_ids;   ///< address of u32[input_count], or 0
  uint64_t output_ids;  ///< address of u32[output_count], or 0
};

/// `input_request`, `output_request`: takes `id`, writes the rest.
struct resource_record_t {
  uint32_t id;
  char name[32];  ///< NUL padded; no NUL when it takes all 32
  uint32_t kind;  ///< `input_kind_e` or `output_kind_e`, or a kind not known here
  uint32_t hw;    ///< source number for routing; 0 for outputs
};

/// `read_edid_request`. First call with a null pointer: the driver writes `size`. Second call: it writes at most `size`
/// bytes to `bytes` and their number to `size`.
struct edid_record_t {
  uint32_t id;
  uint32_t pad;
  uint64_t size;
  uint64_t bytes;  ///< address of `size` bytes, or 0
};

/// The ten numbers of a video timing, in the order of the wire.
struct timing_t {
  uint32_t pixel_clock_khz;
  uint32_t h_active;
  uint32_t h_sync_start;
  uint32_t h_sync_end;
  uint32_t h_total;
  uint32_t v_active;
  uint32_t v_sync_start;
  uint32_t v_sync_end;
  uint32_t v_total;
  uint32_t flags;
};

/// `set_timing_request`: the timing of an output.
struct timing_record_t {
  uint32_t id;
  timing_t timing;
  uint32_t zero[4];
};

/// A resource and one number: connection, audio and mute requests.
struct value_record_t {
  uint32_t id;
  uint32_t value;
};

/// `hdcp_status_request`: takes `id`, writes the two states.
struct hdcp_record_t {
  uint32_t id;
  uint32_t authentication;  ///< `hdcp_auth_e`
  uint32_t encryption;      ///< `hdcp_enc_e`
};

/// `set_output_source_request`, `remove_output_source_request`.
struct source_record_t {
  uint32_t input_id;
  uint32_t output_id;
  uint32_t hw;  ///< source number of the input
};

/// `set_audio_clock_request`: the audio clock regeneration of an output, as `vgn::audio_clock` computes it.
struct audio_record_t {
  uint32_t id;
  uint32_t a;
  uint32_t cts;
  uint32_t q;
};

/// What the driver says in an event record.
enum class link_event_e : uint32_t {
  input_link = 0,
  input_streamup = 1,
  input_streamdown = 2,
  input_avi_infoframe = 3,
  output_link = 4,
  output_connection = 5,
  output_disconnection = 6,
  output_streamup = 7,
  output_streamdown = 8,
};

/// A read of the misc device gives any whole number of these, oldest first; EAGAIN when there are none.
struct vgn_event_t {
  uint32_t type;  ///< `link_event_e`, or a type not known here
  uint32_t id;    ///< the resource that it is about
};

// The requests. The direction bits of the connection, audio and mute requests say "write" only; of these, the input
// connection, output connection and audio channel requests write `value` back all the same.
inline constexpr uint32_t resources_request = _IOWR('V', 0, resources_record_t);
inline constexpr uint32_t input_request = _IOWR('V', 1, resource_record_t);
inline constexpr uint32_t output_request = _IOWR('V', 2, resource_record_t);
inline constexpr uint32_t read_edid_request = _IOWR('V', 4, edid_record_t);
inline constexpr uint32_t set_timing_request = _IOW('V', 5, timing_record_t);
inline constexpr uint32_t hdcp_status_request = _IOWR('V', 8, hdcp_record_t);
inline constexpr uint32_t set_output_source_request = _IOWR('V', 9, source_record_t);
inline constexpr uint32_t remove_output_source_request = _IOWR('V', 10, source_record_t);
inline constexpr uint32_t input_connected_request = _IOW('V', 13, value_record_t);
inline constexpr uint32_t output_connected_request = _IOW('V', 14, value_record_t);
inline constexpr uint32_t audio_channels_request = _IOW('V', 15, value_record_t);
inline constexpr uint32_t set_audio_clock_request = _IOW('V', 17, audio_record_t);
inline constexpr uint32_t active_audio_request = _IOWR('V', 23, value_record_t);
inline constexpr uint32_t set_output_mute_request = _IOW('V', 27, value_record_t);
/// `id` is 0, `value` the mux mode.
inline constexpr uint32_t set_hdmi_mux_input_mode_request = _IOW('V', 29, value_record_t);
inline constexpr uint32_t set_output_freeze_request = _IOW('V', 30, value_record_t);

static_assert(resources_request == 0xC0185600);
static_assert(input_request == 0xC02C5601);
static_assert(output_request == 0xC02C5602);
static_assert(read_edid_request == 0xC0185604);
static_assert(set_timing_request == 0x403C5605);
static_assert(hdcp_status_request == 0xC00C5608);
static_assert(set_output_source_request == 0xC00C5609);
static_assert(remove_output_source_request == 0xC00C560A);
static_assert(input_connected_request == 0x4008560D);
static_assert(output_connected_request == 0x4008560E);
static_assert(audio_channels_request == 0x4008560F);
static_assert(set_audio_clock_request == 0x40105611);
static_assert(active_audio_request == 0xC0085617);
static_assert(set_output_mute_request == 0x4008561B);
static_assert(set_hdmi_mux_input_mode_request == 0x4008561D);
static_assert(set_output_freeze_request == 0x4008561E);

static_assert(sizeof(resources_record_t) == 24);
static_assert(offsetof(resources_record_t, input_count) == 0);
static_assert(offsetof(resources_record_t, output_count) == 4);
static_assert(offsetof(resources_record_t, input_ids) == 8);
static_assert(offsetof(resources_record_t, output_ids) == 16);

static_assert(sizeof(resource_record_t) == 44);
static_assert(offsetof(resource_record_t, id) == 0);
static_assert(offsetof(resource_record_t, name) == 4);
static_assert(offsetof(resource_record_t, kind) == 36);
static_assert(offsetof(resource_record_t, hw) == 40);

static_assert(sizeof(edid_record_t) == 24);
static_assert(offsetof(edid_record_t, id) == 0);
static_assert(offsetof(edid_record_t, pad) == 4);
static_assert(offsetof(edid_record_t, size) == 8);
static_assert(offsetof(edid_record_t, bytes) == 16);

static_assert(sizeof(timing_t) == 40);
static_assert(offsetof(timing_t, pixel_clock_khz) == 0);
static_assert(offsetof(timing_t, h_active) == 4);
static_assert(offsetof(timing_t, h_sync_start) == 8);
static_assert(offsetof(timing_t, h_sync_end) == 12);
static_assert(offsetof(timing_t, h_total) == 16);
static_assert(offsetof(timing_t, v_active) == 20);
static_assert(offsetof(timing_t, v_sync_start) == 24);
static_assert(offsetof(timing_t, v_sync_end) == 28);
static_assert(offsetof(timing_t, v_total) == 32);
static_assert(offsetof(timing_t, flags) == 36);

static_assert(sizeof(timing_record_t) == 60);
static_assert(offsetof(timing_record_t, id) == 0);
static_assert(offsetof(timing_record_t, timing) == 4);
static_assert(offsetof(timing_record_t, zero) == 44);

static_assert(sizeof(value_record_t) == 8);
static_assert(offsetof(value_record_t, id) == 0);
static_assert(offsetof(value_record_t, value) == 4);

static_assert(sizeof(hdcp_record_t) == 12);
static_assert(offsetof(hdcp_record_t, id) == 0);
static_assert(offsetof(hdcp_record_t, authentication) == 4);
static_assert(offsetof(hdcp_record_t, encryption) == 8);

static_assert(sizeof(source_record_t) == 12);
static_assert(offsetof(source_record_t, input_id) == 0);
static_assert(offsetof(source_record_t, output_id) == 4);
static_assert(offsetof(source_record_t, hw) == 8);

static_assert(sizeof(audio_record_t) == 16);
static_assert(offsetof(audio_record_t, id) == 0);
static_assert(offsetof(audio_record_t, a) == 4);
static_assert(offsetof(audio_record_t, cts) == 8);
static_assert(offsetof(audio_record_t, q) == 12);

static_assert(sizeof(vgn_event_t) == 8);
static_assert(offsetof(vgn_event_t, type) == 0);
static_assert(offsetof(vgn_event_t, id) == 4);

}  // namespace vgn
