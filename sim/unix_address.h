#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

#include "sim/descriptor.h"

namespace sim {

/// Makes a non-blocking socket of `type` bound to `path`, open to every user; what an earlier run left there goes.
/// Throws `std::system_error`.
descriptor_t bind_unix_socket(int type, const std::string& path);

/// The address of `path`. Throws `std::system_error` if it is too long for one.
sockaddr_un unix_address(const std::string& path);

}  // namespace sim
