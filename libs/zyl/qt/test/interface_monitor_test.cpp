#include "zyl/qt/interface_monitor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QMetaObject>
#include <QSignalSpy>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "test_support/fake_property_service.h"
#include "test_support/qt_loop_until.h"

using test_support::fake_property_service_t;
using test_support::qt_loop_until;

namespace {

const std::array<std::string, 6> names = {"lan_a_0", "lan_a_1", "lan_b_0", "lan_b_1", "aux_a", "aux_b"};

class InterfaceMonitorTest : public testing::Test {
 protected:
  InterfaceMonitorTest() { EXPECT_TRUE(service.hears_count(6 * 4 * 3)); }

  /// Has the service tell the property. Gives the interface that the monitor tells of; -1 if it does not do so once.
  int tell(const std::string& path, const std::string& value) {
    const QSignalSpy spy(&monitor, &InterfaceMonitor::changed);
    service.send({"changed", path, value});
    const bool once = qt_loop_until([&] { return spy.count() > 0; }) && spy.count() == 1;
    return once ? spy[0][0].toInt() : -1;
  }

  int tell_leaf(int interface, const char* leaf, const std::string& value) {
    return tell("/sys/lan_daemon/" + names.at(static_cast<std::size_t>(interface)) + "/" + leaf, value);
  }

  fake_property_service_t service;
  InterfaceMonitor monitor;
};

/// Moves the process into a network of its own whose only interface has the name and the hardware address 02:..:0a.
/// False if the machine does not allow that, or if the process has threads.
bool make_only_interface(const char* name) {
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0 && unshare(CLONE_NEWNET) != 0) {
    return false;
  }
  ifreq rename{};
  std::strncpy(rename.ifr_name, "lo", IFNAMSIZ - 1);
  std::strncpy(rename.ifr_newname, name, IFNAMSIZ - 1);
  ifreq address{};
  std::strncpy(address.ifr_name, name, IFNAMSIZ - 1);
  address.ifr_hwaddr.sa_family = ARPHRD_LOOPBACK;
  const std::array<char, 6> bytes = {2, 0, 0, 0, 0, 10};
  std::copy(bytes.begin(), bytes.end(), address.ifr_hwaddr.sa_data);
  const int control = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  const bool made = ioctl(control, SIOCSIFNAME, &rename) == 0 && ioctl(control, SIOCSIFHWADDR, &address) == 0;
  close(control);
  return made;
}

constexpr int not_allowed = 77;

/// Gives the exit status of the process that it runs in: 0 if the addresses are right.
int read_macs_of_a_network_of_its_own() {
  if (!make_only_interface("lan_b_1")) {
    return not_allowed;
  }
  const InterfaceMonitor monitor;
  EXPECT_EQ(monitor.mac(3), "02:00:00:00:00:0A");
  EXPECT_EQ(monitor.mac(2), "<unknown>");
  std::fflush(stdout);  // what was expected
  return testing::Test::HasFailure() ? 1 : 0;
}

}  // namespace

TEST_F(InterfaceMonitorTest, WatchesFourPropertiesOfSixInterfaces) {
  std::vector<fake_property_service_t::request_t> expected;
  for (const auto& name : names) {
    for (const char* leaf : {"ip", "link", "netmask", "dflt_route"}) {
      for (const char* command : {"create", "monitor", "get"}) {
        expected.push_back({command, "/sys/lan_daemon/" + name + "/" + leaf});
      }
    }
  }
  EXPECT_THAT(service.requests(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(InterfaceMonitorTest, BeforeTheFirstAnswerTextsAreEmptyAndLinksDown) {
  for (int interface = 0; interface < InterfaceMonitor::interfaceCount; ++interface) {
    EXPECT_EQ(monitor.ip(interface), "");
    EXPECT_EQ(monitor.netmask(interface), "");
    EXPECT_EQ(monitor.gateway(interface), "");
    EXPECT_FALSE(monitor.link(interface));
  }
}

TEST_F(InterfaceMonitorTest, EachPropertyOfEachInterfaceIsReadAndToldWithItsNumber) {
  for (int interface = 0; interface < InterfaceMonitor::interfaceCount; ++interface) {
    const std::string number = std::to_string(interface);
    EXPECT_EQ(tell_leaf(interface, "ip", "10.0.0." + number), interface);
    EXPECT_EQ(tell_leaf(interface, "netmask", "255.255.255." + number), interface);
    EXPECT_EQ(tell_leaf(interface, "dflt_route", "10.0.1." + number), interface);
    EXPECT_EQ(tell_leaf(interface, "link", "UP"), interface);
  }
  for (int interface = 0; interface < InterfaceMonitor::interfaceCount; ++interface) {
    const QString number = QString::number(interface);
    EXPECT_EQ(monitor.ip(interface), "10.0.0." + number);
    EXPECT_EQ(monitor.netmask(interface), "255.255.255." + number);
    EXPECT_EQ(monitor.gateway(interface), "10.0.1." + number);
    EXPECT_TRUE(monitor.link(interface));
  }
}

TEST_F(InterfaceMonitorTest, LinkIsUpOnlyWhenTheTextIsExactlyUp) {
  for (const char* text : {"DOWN", "", "up", "Up", "UP ", " UP", "UPPER", "1"}) {
    ASSERT_EQ(tell_leaf(1, "link", "UP"), 1);
    EXPECT_TRUE(monitor.link(1));
    ASSERT_EQ(tell_leaf(1, "link", text), 1);
    EXPECT_FALSE(monitor.link(1)) << '"' << text << '"';
  }
}

TEST_F(InterfaceMonitorTest, ValueThatBecomesEmptyIsTold) {
  ASSERT_EQ(tell_leaf(4, "ip", "10.0.0.4"), 4);
  EXPECT_EQ(tell_leaf(4, "ip", ""), 4);
  EXPECT_EQ(monitor.ip(4), "");
}

TEST_F(InterfaceMonitorTest, UnchangedValueIsToldAgain) {
  EXPECT_EQ(tell_leaf(5, "link", "UP"), 5);
  EXPECT_EQ(tell_leaf(5, "link", "UP"), 5);
}

TEST_F(InterfaceMonitorTest, NumbersOutsideTheTableAreEmpty) {
  for (const int interface : {-1, 6, 1000}) {
    EXPECT_EQ(monitor.ip(interface), "");
    EXPECT_EQ(monitor.netmask(interface), "");
    EXPECT_EQ(monitor.gateway(interface), "");
    EXPECT_FALSE(monitor.link(interface));
    EXPECT_EQ(monitor.mac(interface), "<unknown>");
  }
}

TEST_F(InterfaceMonitorTest, InterfacesThatNobodyWatchesAreNotTold) {
  const QSignalSpy spy(&monitor, &InterfaceMonitor::changed);
  service.send({"changed", "/sys/lan_daemon/lan_c_0/ip", "10.0.0.1"});
  service.send({"changed", "/sys/lan_daemon/lan_a_0/mtu", "1500"});
  service.send({"changed", "/sys/lan_daemon/aux_b/ip", "10.0.0.2"});
  ASSERT_TRUE(qt_loop_until([&] { return spy.count() > 0; }));
  ASSERT_EQ(spy.count(), 1);
  EXPECT_EQ(spy[0][0].toInt(), 5);
}

TEST_F(InterfaceMonitorTest, NotificationOfAnUnknownInterfaceIsDropped) {
  const QSignalSpy spy(&monitor, &InterfaceMonitor::changed);
  const auto notify = [&](const char* path) {
    return QMetaObject::invokeMethod(&monitor, "propertyChanged", Q_ARG(QByteArray, path), Q_ARG(QByteArray, "1"));
  };
  ASSERT_TRUE(notify("/sys/lan_daemon/lan_c_0/ip"));
  ASSERT_TRUE(notify("/sys/lan_daemon/hostname"));
  EXPECT_EQ(spy.count(), 0);
  ASSERT_TRUE(notify("/sys/lan_daemon/lan_b_0/ip"));
  EXPECT_EQ(spy.count(), 1);
}

TEST(InterfaceOfPath, IsTheFirstNameThatBeginsWhatFollowsTheSixteenthCharacter) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto path = QByteArray::fromStdString("/sys/lan_daemon/" + names.at(i));
    EXPECT_EQ(InterfaceMonitor::interfaceOf(path), static_cast<int>(i));
    EXPECT_EQ(InterfaceMonitor::interfaceOf(path + "/ip"), static_cast<int>(i));
    // Nothing looks at what ends the name.
    EXPECT_EQ(InterfaceMonitor::interfaceOf(path + "5/ip"), static_cast<int>(i));
    // Nor at what comes before it.
    EXPECT_EQ(InterfaceMonitor::interfaceOf(QByteArray(16, 'x') + names.at(i).c_str()), static_cast<int>(i));
  }
}

TEST(InterfaceOfPath, IsSixWhenNoNameMatches) {
  for (const char* path : {"/sys/lan_daemon/lan_c_0/ip", "/sys/lan_daemon/lan_a_2/ip", "/sys/lan_daemon/lan_a_",
                           "/sys/lan_daemon/LAN_A_0/ip", "/sys/lan_daemon/aux", "/sys/lan_daemon//lan_a_0/ip",
                           "/sys/lan_daemon/", "/sys/lan", "lan_a_0/ip", "/sys/lan_daemonlan_a_0/ip", ""}) {
    EXPECT_EQ(InterfaceMonitor::interfaceOf(path), 6) << path;
  }
}

// In a process of its own, which has one thread, and so that this one keeps its network.
TEST(InterfaceMonitorMac, IsTheMachinesHardwareAddress) {
  const pid_t child = fork();
  if (child == 0) {
    std::_Exit(read_macs_of_a_network_of_its_own());
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == not_allowed) {
    GTEST_SKIP() << "this machine does not let a test name a network interface";
  }
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(InterfaceMonitorMac, IsUnknownOnAMachineWithoutTheInterfaces) {
  const InterfaceMonitor monitor;
  for (int interface = 0; interface < InterfaceMonitor::interfaceCount; ++interface) {
    EXPECT_EQ(monitor.mac(interface), "<unknown>");
  }
}
