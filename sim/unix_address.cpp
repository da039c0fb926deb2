#include "sim/unix_address.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace sim {

sockaddr_un unix_address(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

descriptor_t bind_unix_socket(int type, const std::string& path) {
  const sockaddr_un address = unix_address(path);
  descriptor_t bound(socket(AF_UNIX, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  unlink(path.c_str());
  if (!bound || bind(bound.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot serve " + path);
  }
  chmod(path.c_str(), 0666);
  return bound;
}

}  // namespace sim
