#include "app/test/vgn_control_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>

#include "test_support/qt_loop_until.h"

using vgn_control::VgnControl;

VgnControlTest::VgnControlTest()
    : service(test_support::fake_property_service_t::from({
          {engine_state, ""},
          {design_status, ""},
          {dev_options, ""},
          {id_mode, ""},
          {ui_control, ""},
          {hdmi1_properties, ""},
          {hdmi2_properties, ""},
          {valid_format, ""},
          {hdmi1_screen, ""},
          {hdmi2_screen, ""},
      })) {}

void VgnControlTest::TearDown() {
  control.reset();
  unsetenv("VGN_CONTROL_BLOCK");
}

void VgnControlTest::start(const QString& input) {
  last_heard.clear();
  control = std::make_unique<VgnControl>(input, nullptr);
  QObject::connect(control.get(), &VgnControl::designStatusChanged, control.get(),
                   [this](const QByteArray& value) { designStatuses.push_back(value.toStdString()); });
  QObject::connect(control.get(), &VgnControl::validFormatChanged, control.get(),
                   [this](const QByteArray& value) { validFormats.push_back(value.toStdString()); });
  QObject::connect(control->findChild<PropertyMonitor*>(), &PropertyMonitor::valueChanged, control.get(),
                   [this](const QByteArray& name) { last_heard = name.toStdString(); });
  // Each property is told once at the start, this one last; only what comes after it is the test's.
  ASSERT_TRUE(test_support::qt_loop_until([this] { return last_heard == hdmi2_screen; }));
  designStatuses.clear();
  validFormats.clear();
}

void VgnControlTest::startBlocked(const QString& input) {
  setenv("VGN_CONTROL_BLOCK", "1", 1);
  start(input);
}

void VgnControlTest::tell(const char* path, const char* value) {
  last_heard.clear();
  service.send({"changed", path, value});
  // Nothing happens at this one.
  service.send({"changed", hdmi2_screen, ""});
  ASSERT_TRUE(test_support::qt_loop_until([this] { return last_heard == hdmi2_screen; }));
}

std::vector<std::string> VgnControlTest::written(const char* path) {
  control->setProperty(dev_options, "end");
  EXPECT_TRUE(service.hears({"set", dev_options, "end"}));
  std::vector<std::string> values;
  for (const auto& request : service.requests()) {
    if (request.size() == 3 && request[0] == "set" && request[1] == path) {
      values.push_back(request[2]);
    }
  }
  service.forget_requests();
  return values;
}

bool VgnControlTest::isWritten(const char* path, const char* value) const {
  return test_support::qt_loop_until([&] {
    const auto requests = service.requests();
    return std::find(requests.begin(), requests.end(), request_t{"set", path, value}) != requests.end();
  });
}

std::string VgnControlTest::setting(const std::string& path, const std::string& value) {
  return "Set propety +\"" + path + "\" +to value: +\"" + value + "\"";
}

std::vector<std::string> VgnControlTest::videoSideAtWriteOf(const char* path, const char* value, const char* state) {
  std::vector<std::string> knew;
  log.clear();
  on_qt_line = [&](const std::string& text) {
    if (testing::Matches(testing::MatchesRegex(setting(path, value)))(text)) {
      knew = log.lines();
    }
  };
  tell(engine_state, state);
  on_qt_line = nullptr;
  return knew;
}
