// The commands of a server without a network.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"
#include "tools/qvstandin/commands/Command.h"

namespace qv::standin {

class CommandFixture : public testing::Test {
 protected:
  Reply Ask(std::uint32_t command, const FieldWriter& fields) {
    WorkLimit limit(time_, [] { return false; });
    return Answer(services_, {command, FieldReader(fields.Payload()), limit});
  }

  const TempFolder folder_;
  DataFolder data_{folder_.At()};
  ServerLog log_{folder_.At("server.log")};
  KeptDatabases kept_;
  Services services_{data_, log_, 64 << 10, 1 << 30, &kept_};
  std::chrono::milliseconds time_{30'000};
};

}  // namespace qv::standin
