#pragma once

#include <cstdint>

namespace lnx {

// The KTM5030 behind "/dev/ktm5030". Its driver knows three requests:
//
//   read mode    one byte, read back
//   write mode   one byte
//   read info    `ktm5030_info_t`, read back
//
// A read(2) gives one 32-bit event code: 0 and 1, 3 and 4, 5 and 6 tell that `signal`, `flag_a` and `flag_b` of the
// status have become 1 and 0; 2 tells that there is new info.
//
// Every function but the last opens the device, and fails if there is none. They take no lock: any thread may call
// them, but no two may take events at once, as the one that comes too late would wait for the next event.

inline constexpr uint32_t ktm5030_read_mode_request = 0xC0014B01;
inline constexpr uint32_t ktm5030_write_mode_request = 0x40014B02;
inline constexpr uint32_t ktm5030_read_info_request = 0xC00C4B00;

/// What the driver fills in; what its words mean is the driver's affair.
struct ktm5030_info_t {
  uint32_t first = 0;
  uint32_t second = 0;
  uint32_t third = 0;
};
static_assert(sizeof(ktm5030_info_t) == 12);

/// What the driver has told so far. The meaning of the flags is the driver's affair.
struct ktm5030_status_t {
  uint32_t signal = 0;
  ktm5030_info_t info;
  uint8_t flag_a = 0;
  uint8_t flag_b = 0;
};

/// What has come since the last call of `ktm5030_poll_events`.
enum ktm5030_change_e : uint32_t {
  ktm5030_signal_change = 1,
  ktm5030_info_change = 2,
  ktm5030_flag_a_change = 4,
  ktm5030_flag_b_change = 8,
};

/// Stores 0 for the byte 0, and 2 for any other. Gives 0 if it fails, and `out_mode` is as it was; otherwise the byte,
/// with 1 in place of 0: true in a condition.
uint8_t ktm5030_get_mode(uint32_t& out_mode);

/// Writes the byte 1 for the modes 1 and 2, 0 for any other mode. False if it fails.
bool ktm5030_set_mode(uint32_t mode);

/// Fills `status.info`. False if it fails, and `status` is as it was.
///
/// Leaves its descriptor open, whatever comes of the request: every call on a device that is there uses one up for the
/// life of the process. This is on purpose; it is no function to call again and again.
bool ktm5030_read_info(ktm5030_status_t& status);

/// Takes all events that wait into `status`, without waiting for any. Gives the sum of the `ktm5030_change_e` that
/// came, 0 if the device cannot be opened. Where the info cannot be read its first and third words become 0; it counts
/// as a change all the same.
///
/// An event that one caller has taken is not seen by another. A failed read, half an event and an unknown code change
/// nothing. The call ends where nothing more waits, and also when the device hangs up or is in error, and when a read
/// gives nothing at all or fails with anything but EINTR, EAGAIN or EIO, so that what is no such device does not hold
/// the caller. After those three, and after half an event, it goes on for as long as there is something to read.
uint32_t ktm5030_poll_events(ktm5030_status_t& status);

/// The same on a descriptor of the device, which stays open; 0 for one that is not open.
uint32_t ktm5030_take_events(int fd, ktm5030_status_t& status);

}  // namespace lnx
