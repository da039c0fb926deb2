#include "sim/video_engine.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>

#include "zyl/event_loop.h"

namespace {

const std::string socket_path = "/var/tarn-engine-ipc/0/video-sp";

/// A client of the engine: connects, asks for the status block and configures.
class VideoEngine : public testing::Test, protected eipc::receiver_t {
 protected:
  template <typename Condition>
  bool turn_until(Condition holds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > limit) {
        return false;
      }
      const timeval pause{0, 1000};
      event_base_loopexit(loop.base(), &pause);
      event_base_dispatch(loop.base());
      if (client && client->is_open()) {
        last_process = client->process();
      }
    }
    return true;
  }

  void connect() {
    client = std::make_unique<eipc::socket_t>();
    client->add_receiver(this, {eipc::gen::fd_resp_t::kind});
    ASSERT_EQ(client->create(SOCK_SEQPACKET), 0);
    ASSERT_EQ(client->connect(socket_path), 0);
    ASSERT_GT(client->sendto(eipc::gen::fd_req_t::kind, eipc::gen::fd_req_t(), ""), 0);
    ASSERT_TRUE(turn_until([this] { return static_cast<bool>(block_memory); }));
    struct stat info {};
    ASSERT_EQ(fstat(block_memory.get(), &info), 0);
    block_size = static_cast<std::size_t>(info.st_size);
    if (block_size >= videng::status_block_t::size) {
      mapping = videng::status_mapping_t(block_memory.get(), block_size);
      ASSERT_TRUE(mapping.mapped());
    }
  }

  void received(eipc::socket_t& /*sk*/, const std::string& /*from*/, const eipc::message_type& /*type*/,
                zyl::datastream_strio_t& /*data*/, const std::vector<lnx::cmsg_t>& cmsgs) override {
    for (const lnx::cmsg_t& record : cmsgs) {
      block_memory = sim::descriptor_t(record.has_fd() ? record.fd() : -1);
    }
  }

  void configure(std::size_t index, const std::string& uri) {
    videng::decoder_config_t wanted;
    wanted.decoder = static_cast<uint8_t>(index);
    wanted.uri = uri;
    mapping.block().decoder(index).config_result().store(0);
    ASSERT_GT(client->sendto(videng::decoder_config_t::kind, wanted, ""), 0);
  }

  bool result_becomes(std::size_t index, int32_t result) {
    return turn_until([&] { return mapping.block().decoder(index).config_result().load() == result; });
  }

  std::size_t dmabuf_decoder(int32_t instance) {
    for (std::size_t index = 0; index < videng::decoder_count; ++index) {
      const auto entry = mapping.block().decoder(index);
      if (entry.type().load() == videng::depayloader_mediacast_dmabuf && entry.instance().load() == instance) {
        return index;
      }
    }
    return videng::decoder_count;
  }

  static bool told(const std::string& text) {
    std::ifstream file(story_path);
    const std::string lines{std::istreambuf_iterator<char>(file), {}};
    return lines.find(text) != std::string::npos;
  }

  static constexpr const char* story_path = "/tmp/story";

  zyl::event_loop_t loop;
  sim::property_tree_t properties;
  sim::story_t story{story_path};
  sim::video_engine_t engine{loop.base(), properties, story};

  std::unique_ptr<eipc::socket_t> client;
  sim::descriptor_t block_memory;
  std::size_t block_size = 0;
  videng::status_mapping_t mapping;
  int last_process = 0;
};

TEST_F(VideoEngine, HandsItsStatusBlockOver) {
  connect();
  EXPECT_EQ(block_size, videng::status_block_t::size);
  EXPECT_EQ(mapping.block().name(videng::raw_outs, 1), "zvid-raw-frame_inject_in_1");
  EXPECT_EQ(properties.value("/sim/engine/connected"), "1");
}

TEST_F(VideoEngine, HasTwoSplashDecodersWhoseIndexIsNotTheirInstance) {
  connect();
  EXPECT_LT(dmabuf_decoder(1), videng::decoder_count);
  EXPECT_GT(dmabuf_decoder(0), 1U);
  EXPECT_GT(dmabuf_decoder(1), 1U);
}

TEST_F(VideoEngine, AcceptsADecoderAndItsClearing) {
  connect();
  const std::size_t index = dmabuf_decoder(1);
  const std::string path = "/sim/engine/decoder/" + std::to_string(index);
  configure(index, "videng-pnl8-dmabuf1");
  EXPECT_TRUE(result_becomes(index, 1));
  EXPECT_EQ(properties.value(path), "videng-pnl8-dmabuf1");
  configure(index, "");
  EXPECT_TRUE(result_becomes(index, 1));
  EXPECT_EQ(properties.value(path), "");
}

TEST_F(VideoEngine, AcceptsARawOutAndItsClearing) {
  connect();
  videng::raw_out_config_t wanted;
  wanted.raw_out = 1;
  wanted.decoder = 0;
  wanted.width = 1920;
  wanted.height = 1080;
  ASSERT_GT(client->sendto(videng::raw_out_config_t::kind, wanted, ""), 0);
  EXPECT_TRUE(turn_until([this] { return mapping.block().raw_out_config_result(1).load() == 1; }));
  EXPECT_EQ(properties.value("/sim/engine/raw_out/1"), "0 1920 1080");
  mapping.block().raw_out_config_result(1).store(0);
  wanted = {};
  wanted.raw_out = 1;
  ASSERT_GT(client->sendto(videng::raw_out_config_t::kind, wanted, ""), 0);
  EXPECT_TRUE(turn_until([this] { return mapping.block().raw_out_config_result(1).load() == 1; }));
  EXPECT_EQ(properties.value("/sim/engine/raw_out/1"), "-1 0 0");
}

TEST_F(VideoEngine, CountsFramesOnlyWhileTheSplashIsDrawn) {
  connect();
  const std::size_t index = dmabuf_decoder(0);
  const auto decoded = [&] { return mapping.block().decoder(index).decoded_count().load(); };
  properties.set("/sim/splash/1/drawn", "boot_splash_screen");
  configure(dmabuf_decoder(1), "videng-pnl8-dmabuf1");
  configure(index, "videng-pnl8-dmabuf0");
  const auto other = [&] { return mapping.block().decoder(dmabuf_decoder(1)).decoded_count().load(); };
  EXPECT_TRUE(turn_until([&] { return other() >= 3; }));
  EXPECT_EQ(decoded(), 0U);
  properties.set("/sim/splash/0/drawn", "boot_splash_screen");
  EXPECT_TRUE(turn_until([&] { return decoded() >= 3; }));
}

TEST_F(VideoEngine, LeavesAConfigurationWaitingWhenItStalls) {
  connect();
  properties.set("/sim/engine/fault", "stall");
  const std::size_t index = dmabuf_decoder(0);
  configure(index, "videng-pnl8-dmabuf0");
  EXPECT_TRUE(turn_until([] { return told("left waiting"); }));
  EXPECT_EQ(mapping.block().decoder(index).config_result().load(), 0);
  properties.set("/sim/engine/fault", "");
  configure(index, "videng-pnl8-dmabuf0");
  EXPECT_TRUE(result_becomes(index, 1));
}

TEST_F(VideoEngine, RefusesAConfiguration) {
  connect();
  properties.set("/sim/engine/fault", "refuse");
  const std::size_t index = dmabuf_decoder(0);
  configure(index, "videng-pnl8-dmabuf0");
  EXPECT_TRUE(result_becomes(index, -1));
  EXPECT_EQ(properties.value("/sim/engine/decoder/" + std::to_string(index)), "");
}

TEST_F(VideoEngine, HandsAShortBlockOver) {
  properties.set("/sim/engine/fault", "short");
  connect();
  EXPECT_LT(block_size, videng::status_block_t::size);
}

TEST_F(VideoEngine, SendsJunkAndGoesOnServing) {
  connect();
  properties.set("/sim/engine/fault", "junk");
  EXPECT_GT(client->pending_size(), 0U);
  const std::size_t index = dmabuf_decoder(0);
  configure(index, "videng-pnl8-dmabuf0");
  EXPECT_TRUE(result_becomes(index, 1));
}

TEST_F(VideoEngine, IgnoresDecodersAndRawOutsThatAreNotThere) {
  connect();
  videng::decoder_config_t decoder;
  decoder.decoder = 25;
  ASSERT_GT(client->sendto(videng::decoder_config_t::kind, decoder, ""), 0);
  videng::raw_out_config_t raw_out;
  raw_out.raw_out = 2;
  ASSERT_GT(client->sendto(videng::raw_out_config_t::kind, raw_out, ""), 0);
  configure(0, "x");
  EXPECT_TRUE(result_becomes(0, 1));
}

TEST_F(VideoEngine, EndsAsInACrashAndStartsEmpty) {
  connect();
  configure(dmabuf_decoder(0), "videng-pnl8-dmabuf0");
  EXPECT_TRUE(result_becomes(dmabuf_decoder(0), 1));
  properties.set("/sim/engine/running", "0");
  EXPECT_TRUE(turn_until([this] { return last_process == -ECONNRESET; }));
  EXPECT_NE(::access(socket_path.c_str(), F_OK), 0);
  EXPECT_EQ(properties.value("/sim/engine/connected"), "0");
  properties.set("/sim/engine/running", "1");
  EXPECT_EQ(properties.value("/sim/engine/decoder/" + std::to_string(dmabuf_decoder(0))), "");
  block_memory.reset();
  connect();
  EXPECT_EQ(mapping.block().decoder(dmabuf_decoder(0)).decoded_count().load(), 0U);
}

TEST_F(VideoEngine, NoticesThatAClientHasGone) {
  connect();
  client->close();
  EXPECT_TRUE(turn_until([this] { return properties.value("/sim/engine/connected") == "0"; }));
}

}  // namespace
