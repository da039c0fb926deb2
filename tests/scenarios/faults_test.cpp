#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/scenarios/daemon_scenario.h"

// Peers and displays that do not keep to any contract. Whatever they do, the next good display gets its splash.

namespace scenarios {
namespace {

class Faults : public DaemonScenario {
 protected:
  void expect_a_good_display_to_work() {
    remote().unplug(0);
    expect_disconnected(0);
    remote().plug(0, sim::uhd_display_edid());
    expect_published(0, "1920x1080");
    expect_splash(0);
  }
};

/// A display whose EDID is this many bytes of a good one; a longer one repeats its extension.
sim::edid_bytes_t good_edid_of_size(std::size_t size) {
  sim::edid_bytes_t edid = sim::uhd_display_edid();
  while (edid.size() < size) {
    edid.push_back(edid[edid.size() - 128]);
  }
  edid.resize(size);
  return edid;
}

class FaultyEdid : public Faults, public testing::WithParamInterface<std::size_t> {};

TEST_P(FaultyEdid, OfThisSizeIsRepairedOrRefused) {
  start_daemon();
  remote().plug(0, good_edid_of_size(GetParam()));
  if (GetParam() == 0) {
    expect_told("vgn_streamer_proxy::on_output_connection empty edid");
  } else if (GetParam() == 1) {
    expect_told("vgn_streamer_proxy::on_output_connection empty modes list");
  } else {
    expect_published(0, "1920x1080");
    expect_splash(0);
  }
  expect_a_good_display_to_work();
}

INSTANTIATE_TEST_SUITE_P(Sizes, FaultyEdid, testing::Values(0, 1, 127, 128, 129, 255, 256, 384));

TEST_F(Faults, EdidsOfRandomBytesDoNoHarm) {
  start_daemon();
  std::mt19937 random(20260101);
  std::uniform_int_distribution<int> byte(0, 255);
  for (const std::size_t size : {128U, 200U, 256U, 512U}) {
    sim::edid_bytes_t edid(size);
    for (uint8_t& value : edid) {
      value = static_cast<uint8_t>(byte(random));
    }
    const int reads = remote().edid_reads(0);
    remote().plug(0, edid);
    const auto read = remote().wait_property(
        sim::hdmi_path(0, "edid_reads"), [reads](const std::string& count) { return count > std::to_string(reads); });
    EXPECT_TRUE(read) << read.seen;
  }
  expect_a_good_display_to_work();
}

TEST_F(Faults, JunkFromThePropertyServiceIsSkipped) {
  start_daemon();
  remote().set("/sim/property/fault", "junk");
  expect_a_good_display_to_work();
}

TEST_F(Faults, JunkFromTheEngineIsDropped) {
  remote().set("/sim/engine/fault", "junk");
  start_daemon();
  expect_a_good_display_to_work();
}

TEST_F(Faults, AStatusBlockThatIsTooShortIsRefused) {
  remote().stop_engine();
  remote().set("/sim/engine/fault", "short");
  remote().start_engine();
  launch_daemon();
  expect_told("ve_ipc_t::received bad mmap fd or fstat");
  remote().stop_engine();
  remote().set("/sim/engine/fault", "");
  remote().start_engine();
  expect_a_good_display_to_work();
}

TEST_F(Faults, AnEngineThatTakesNoConfigurationIsGivenUpAfterItsTime) {
  remote().set("/sim/engine/fault", "stall");
  launch_daemon();
  expect_told(" ~2000ms TIMEOUT");
  remote().plug(0, sim::full_hd_display_edid());
  expect_published(0, "1920x1080");
}

TEST_F(Faults, AnEngineThatRefusesIsTold) {
  remote().set("/sim/engine/fault", "refuse");
  launch_daemon();
  expect_told("ms ERROR");
  remote().plug(0, sim::full_hd_display_edid());
  expect_published(0, "1920x1080");
}

}  // namespace
}  // namespace scenarios
