#include "test_support/fake_vgn_device.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <utility>

namespace test_support {
namespace {

template <typename Word, typename... Words>
std::string sentence(const Word& first, const Words&... words) {
  std::ostringstream text;
  text << first;
  ((text << ' ' << words), ...);
  return text.str();
}

template <typename Record>
Record& as(void* record) {
  return *static_cast<Record*>(record);
}

template <typename Record>
const Record& as(const void* record) {
  return *static_cast<const Record*>(record);
}

template <typename Resources>
uint32_t fill_ids(const Resources& resources, uint64_t address, uint32_t room) {
  auto* const ids = reinterpret_cast<uint32_t*>(static_cast<uintptr_t>(address));
  uint32_t count = 0;
  for (const auto& [id, resource] : resources) {
    if (ids != nullptr && count < room) {
      ids[count] = id;
    }
    ++count;
  }
  return count;
}

void describe(vgn::resource_record_t& record, const std::string& name, uint32_t kind, uint32_t hw) {
  std::memset(record.name, 0, sizeof(record.name));
  std::memcpy(record.name, name.data(), std::min(name.size(), sizeof(record.name)));
  record.kind = kind;
  record.hw = hw;
}

}  // namespace

class fake_vgn_driver_t::device_t : public vgn::device_t {
 public:
  explicit device_t(fake_vgn_driver_t& served_by) : driver(served_by) {}

  int open(const std::string& node) override {
    driver.opened_node = node;
    driver.is_open = driver.open_result == 0;
    return driver.open_result;
  }

  void close() override { driver.is_open = false; }

  int fd() const override { return driver.is_open ? driver.event_reader : -1; }

  int ioctl(uint32_t request, void* record) override {
    if (!driver.is_open) {
      return -EBADF;
    }
    return driver.fails(request) ? -EIO : driver.serve(request, record);
  }

  int64_t read(std::span<std::byte> buffer) override {
    const ssize_t count = ::read(driver.event_reader, buffer.data(), buffer.size());
    return count >= 0 ? count : -errno;
  }

 private:
  fake_vgn_driver_t& driver;
};

fake_vgn_driver_t::fake_vgn_driver_t() {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_NONBLOCK | O_CLOEXEC) == 0) {
    event_reader = ends[0];
    event_writer = ends[1];
  }
}

fake_vgn_driver_t::~fake_vgn_driver_t() {
  end_events();
  ::close(event_reader);
}

std::unique_ptr<vgn::device_t> fake_vgn_driver_t::make_device() { return std::make_unique<device_t>(*this); }

void fake_vgn_driver_t::tell(uint32_t type, uint32_t id) {
  const vgn::vgn_event_t record{.type = type, .id = id};
  tell_bytes(std::as_bytes(std::span(&record, 1)));
}

void fake_vgn_driver_t::tell_bytes(std::span<const std::byte> bytes) {
  [[maybe_unused]] const ssize_t written = ::write(event_writer, bytes.data(), bytes.size());
}

void fake_vgn_driver_t::end_events() {
  if (event_writer >= 0) {
    ::close(std::exchange(event_writer, -1));
  }
}

std::vector<std::string> fake_vgn_driver_t::take_commands() { return std::exchange(commands, {}); }

bool fake_vgn_driver_t::fails(uint32_t request) {
  const auto planned = failing_call.find(request);
  if (planned != failing_call.end() && --planned->second == 0) {
    failing_call.erase(planned);
    return true;
  }
  return failing.contains(request);
}

int fake_vgn_driver_t::serve(uint32_t request, void* record) {
  switch (request) {
    case vgn::resources_request:
      return serve_resources(as<vgn::resources_record_t>(record));
    case vgn::read_edid_request:
      return serve_edid(as<vgn::edid_record_t>(record));
    case vgn::hdcp_status_request:
      return serve_hdcp(as<vgn::hdcp_record_t>(record));
    default:
      const int result = serve_question(request, record);
      return result != -ENOTTY ? result : serve_command(request, record);
  }
}

int fake_vgn_driver_t::serve_resources(vgn::resources_record_t& record) {
  ++resource_calls;
  const uint32_t input_count = fill_ids(inputs, record.input_ids, record.input_count);
  record.output_count = fill_ids(outputs, record.output_ids, record.output_count);
  record.input_count = record.input_ids == 0 && claimed_inputs != ~0U ? claimed_inputs : input_count;
  return 0;
}

int fake_vgn_driver_t::serve_edid(vgn::edid_record_t& record) {
  const auto output = outputs.find(record.id);
  if (output == outputs.end()) {
    return -EINVAL;
  }
  const auto& edid = output->second.edid;
  if (record.bytes == 0) {
    record.size = claimed_edid_size != ~uint64_t{0} ? claimed_edid_size : edid.size();
    return 0;
  }
  ++edid_reads;
  record.size = std::min<uint64_t>(record.size, edid.size());
  std::copy_n(edid.begin(), record.size, reinterpret_cast<uint8_t*>(static_cast<uintptr_t>(record.bytes)));
  return 0;
}

int fake_vgn_driver_t::serve_hdcp(vgn::hdcp_record_t& record) {
  if (const auto input = inputs.find(record.id); input != inputs.end()) {
    record.authentication = input->second.authentication;
    record.encryption = input->second.encryption;
    return 0;
  }
  if (const auto output = outputs.find(record.id); output != outputs.end()) {
    record.authentication = output->second.authentication;
    record.encryption = output->second.encryption;
    return 0;
  }
  return -EINVAL;
}

int fake_vgn_driver_t::serve_question(uint32_t request, void* record) {
  // Every record of a question begins with the resource's id.
  const uint32_t id = as<uint32_t>(record);
  const auto input = inputs.find(id);
  const auto output = outputs.find(id);
  const bool is_input = input != inputs.end();
  const bool is_output = output != outputs.end();
  if (request == vgn::input_request && is_input) {
    describe(as<vgn::resource_record_t>(record), input->second.name, input->second.kind, input->second.hw);
  } else if (request == vgn::output_request && is_output) {
    describe(as<vgn::resource_record_t>(record), output->second.name, output->second.kind, 0);
  } else if (request == vgn::input_connected_request && is_input) {
    as<vgn::value_record_t>(record).value = input->second.connected ? 1 : 0;
  } else if (request == vgn::output_connected_request && is_output) {
    as<vgn::value_record_t>(record).value = output->second.connected ? 1 : 0;
  } else if (request == vgn::audio_channels_request && is_input) {
    as<vgn::value_record_t>(record).value = input->second.audio_channels;
  } else if (request == vgn::active_audio_request && is_input) {
    as<vgn::value_record_t>(record).value = input->second.active_audio;
  } else {
    return -ENOTTY;
  }
  return 0;
}

int fake_vgn_driver_t::serve_command(uint32_t request, const void* record) {
  const auto& value = as<vgn::value_record_t>(record);
  switch (request) {
    case vgn::set_timing_request: {
      const auto& sent = as<vgn::timing_record_t>(record);
      last_timing = sent.timing;
      commands.push_back(
          sentence("set_timing", sent.id, last_timing.pixel_clock_khz, last_timing.h_active, last_timing.v_active));
      return 0;
    }
    case vgn::set_audio_clock_request: {
      const auto& sent = as<vgn::audio_record_t>(record);
      commands.push_back(sentence("set_audio_clock", sent.id, sent.a, sent.cts, sent.q));
      return 0;
    }
    case vgn::set_output_source_request:
    case vgn::remove_output_source_request: {
      const auto& sent = as<vgn::source_record_t>(record);
      const char* const verb = request == vgn::set_output_source_request ? "set_source" : "remove_source";
      commands.push_back(sentence(verb, sent.output_id, "<-", sent.input_id, "hw", sent.hw));
      return 0;
    }
    case vgn::set_output_mute_request:
      commands.push_back(sentence("mute", value.id, value.value));
      return 0;
    case vgn::set_output_freeze_request:
      commands.push_back(sentence("freeze", value.id, value.value));
      return 0;
    case vgn::set_hdmi_mux_input_mode_request:
      commands.push_back(sentence("mux_mode", value.value));
      return 0;
    default:
      return -ENOTTY;
  }
}

}  // namespace test_support
