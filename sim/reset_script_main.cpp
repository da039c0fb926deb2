// What stands in the simulated appliance for the factory reset script: tells the appliance its arguments and ends as
// the appliance says, by "exits N" or "dies". Without an appliance it fails.

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "sim/reset_script_paths.h"
#include "sim/unix_address.h"

namespace {

std::string joined(int count, char** arguments) {
  std::string text;
  for (int i = 1; i < count; ++i) {
    text += (i > 1 ? " " : "") + std::string(arguments[i]);
  }
  return text + '\n';
}

/// Blocks until the appliance answers; empty without an answer.
std::string ask(const std::string& arguments) {
  const sockaddr_un address = sim::unix_address(sim::reset_script_socket);
  // Not closed before the end of the process: that tells the appliance.
  const int appliance = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
  std::array<char, 64> answer{};
  if (connect(appliance, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      send(appliance, arguments.data(), arguments.size(), MSG_NOSIGNAL) < 0 ||
      recv(appliance, answer.data(), answer.size() - 1, 0) <= 0) {
    return "";
  }
  return answer.data();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string ending = ask(joined(argc, argv));
    if (ending == "dies") {
      kill(getpid(), SIGKILL);
    }
    if (ending.starts_with("exits ")) {
      return std::stoi(ending.substr(6));
    }
    std::cerr << "vgn-reset-script: no appliance tells what to do\n";
  } catch (const std::exception& error) {
    std::cerr << "vgn-reset-script: " << error.what() << '\n';
  }
  return EXIT_FAILURE;
}
