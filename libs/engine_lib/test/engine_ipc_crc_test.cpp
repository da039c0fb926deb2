#include "engine_lib/engine_ipc_crc.h"

#include <gtest/gtest.h>

TEST(EngineIpcCrc, IsZeroForNoBytes) { EXPECT_EQ(eipc::crc32({}), 0U); }

TEST(EngineIpcCrc, GivesThePublishedCheckValue) { EXPECT_EQ(eipc::crc32("123456789"), 0xCBF43926U); }

TEST(EngineIpcCrc, TreatsBytesAsUnsigned) { EXPECT_EQ(eipc::crc32("\xff\xff\xff\xff"), 0xFFFFFFFFU); }
