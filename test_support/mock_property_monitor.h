#pragma once

#include <string>

#include "control_lib/src/property_monitor_eb.h"
#include "test_support/journal.h"

namespace test_support {

/// A property monitor that only notes what it is asked.
class mock_property_monitor_t : public control_lib::property_monitor_eb_t {
 public:
  explicit mock_property_monitor_t(journal_t& notes) : journal(notes) {}
  ~mock_property_monitor_t() override { journal.note("bus", "gone"); }

  void connect() override { journal.note("bus", "connect"); }
  void monitor(const std::string& path, control_lib::property_observer_eb_t* /*observer*/) override {
    journal.note("bus", "monitor", path);
  }
  bool set(const std::string& path, const std::string& value) override {
    journal.note("bus", "set", path, "'" + value + "'");
    return true;
  }

 private:
  journal_t& journal;
};

}  // namespace test_support
