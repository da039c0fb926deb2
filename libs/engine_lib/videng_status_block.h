#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace videng {

/// The kinds of depayloader that a decoder can sit behind. A decoder is addressed by kind and instance within the kind.
enum depayloader_e : int32_t {
  depayloader_none = 0,
  depayloader_visengi = 1,
  depayloader_mediacast_rtsp = 2,
  depayloader_mediacast_file = 3,
  depayloader_mediacast_dmabuf = 4,
  depayloader_mediacast_v4l2 = 5,
  depayloader_null = 6,
};

/// The word of a kind in the log; "unknown" for a value that is none.
const char* depayloader_word(int32_t kind);

/// One table of the status block whose entries begin with a name.
struct named_table_t {
  const char* word;  // its name in the log
  std::size_t offset;
  std::size_t count;
  std::size_t stride;
  std::size_t name_size;  // the name ends before this offset, with or without a NUL
};

inline constexpr named_table_t uvcs{"uvcs", 0x3640, 2, 124, 68};
inline constexpr named_table_t mc_hdmi_outs{"mc_hdmi_outs", 0x3738, 3, 88, 84};
inline constexpr named_table_t raw_outs{"raw_outs", 0x3840, 2, 84, 80};
inline constexpr named_table_t mc_rtsp_outs{"mc_rtsp_outs", 0x38E8, 4, 1036, 68};

inline constexpr std::size_t decoder_count = 25;

/// A 32-bit field that the other process may change at any moment.
template <typename T>
class shared_field_t {
 public:
  explicit shared_field_t(std::byte* at) : place(*reinterpret_cast<T*>(at)) {}

  T load() const { return place.load(); }
  void store(T value) const { place.store(value); }

  /// Adds to it, and returns what it was.
  T add(T value) const { return place.fetch_add(value); }

 private:
  std::atomic_ref<T> place;
};

using status_word_t = shared_field_t<uint32_t>;
using status_result_t = shared_field_t<int32_t>;

/// One decoder in the status block, 400 bytes:
///
///   0 type: depayloader kind      4 instance in the kind        12 payload_count: payloads received
///  16 rx_count: moves while the stream is up                    36 decrypt_err_count: payloads not decrypted
///  56 frame_count: drives the rate estimate                     68 config_result: see below
///  72 decoded_count: frames decoded, rising while the decoder is up
///
/// The rest are the engine's own counters.
class decoder_entry_t {
 public:
  static constexpr std::size_t size = 400;

  explicit decoder_entry_t(std::byte* at) : start(at) {}

  status_result_t type() const { return status_result_t(start); }
  status_result_t instance() const { return status_result_t(start + 4); }
  status_word_t payload_count() const { return status_word_t(start + 12); }
  status_word_t rx_count() const { return status_word_t(start + 16); }
  status_word_t decrypt_err_count() const { return status_word_t(start + 36); }
  status_word_t frame_count() const { return status_word_t(start + 56); }

  /// 0 pending, below 0 refused, above 0 accepted: a running count of what the engine has accepted. The daemon zeroes
  /// it before it sends a configuration.
  status_result_t config_result() const { return status_result_t(start + 68); }

  status_word_t decoded_count() const { return status_word_t(start + 72); }

  /// Zeroes the counters that belong to one configuration: bytes 20 to 43, 48 to 59, 64 to 67. Those that tell whether
  /// payloads and frames move are the engine's alone: `payload_count`, `rx_count` and `decoded_count`.
  void clear_counters() const;

 private:
  std::byte* start;
};

/// The memory image of 18,712 bytes through which the engine publishes what changes often; the engine makes it and both
/// processes map it. All little-endian.
///
///   offset   count  stride  entries
///   0x0000       4     972  encoders
///   0x0F30      25     400  decoders
///   0x3640       2     124  uvcs
///   0x3738       3      88  mc_hdmi_outs
///   0x3840       2      84  raw_outs: name at 0, config_result at 80
///   0x38E8       4    1036  mc_rtsp_outs
///
/// A view: owns nothing. Every access is bounded by the layout; a wrong index ends the process. Any thread.
class status_block_t {
 public:
  static constexpr std::size_t size = 0x4918;

  /// `mapped`: `size` bytes at least, aligned for 32 bits, mapped for as long as the view is used.
  explicit status_block_t(std::span<std::byte> mapped);

  std::span<std::byte> bytes() const { return {start, size}; }

  decoder_entry_t decoder(std::size_t index) const;

  /// The same meaning as in a decoder entry.
  status_result_t raw_out_config_result(std::size_t index) const;

  std::string name(const named_table_t& table, std::size_t index) const;

  /// For the engine's side: cuts what does not fit with its terminator.
  void set_name(const named_table_t& table, std::size_t index, std::string_view name) const;

 private:
  std::byte* entry(const named_table_t& table, std::size_t index) const;

  std::byte* start;
};

}  // namespace videng
