// A server in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

#include "standin/StandIn.h"
#include "tests/support/TempFolder.h"

namespace qv::standin {

inline constexpr std::chrono::seconds kPatience{20};
inline const std::string kForever =
    "with recursive n(i) as (select 1 union all select i + 1 from n) select count(*) from n";

class ServerTest : public testing::Test {
 protected:
  void Start() {
    options_.data_folder = folder_.Path().string();
    server_.emplace(options_);
    std::string error;
    ASSERT_TRUE(server_->Start(&error)) << error;
  }

  const TempFolder folder_;
  StandInOptions options_;
  std::optional<StandIn> server_;
};

}  // namespace qv::standin
