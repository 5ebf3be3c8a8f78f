// `vintar rectify validate` end to end: one synthetic life and the JSON
// figures a script reads.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(CliValidate, OneLifeGivesTheFiguresAndThePerLifeList) {
  testing::TempDir dir;
  const testing::CliRun r = testing::RunVintar(dir, {"rectify", "validate", "--lives", "1", "--events", "12", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = r.json();
  EXPECT_EQ(j["livesRun"], 1);
  for (const char* key : {"within5", "within15", "within60"}) {
    ASSERT_TRUE(j.contains(key)) << key;
    EXPECT_TRUE(j[key].contains("count") && j[key].contains("percent")) << key;
  }
  for (const char* key : {"medianMinutes", "percentile90Minutes", "noAngles", "seconds", "cancelled", "messages"})
    EXPECT_TRUE(j.contains(key)) << key;
  ASSERT_EQ(j["lives"].size(), 1u);
  const nlohmann::json& life = j["lives"][0];
  for (const char* key : {"trueTime", "bestTime", "errorMinutes", "events", "noAngles"})
    EXPECT_TRUE(life.contains(key)) << key;
  EXPECT_EQ(life["events"], 12);
  EXPECT_EQ(life["noAngles"].get<bool>(), life["errorMinutes"].is_null());
}

}  // namespace
}  // namespace vintar
