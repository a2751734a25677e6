#include "base/curl/Transfer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>

#include "tests/support/TempFolder.h"

namespace qv::curl {
namespace {

enum class Call { kNone, kSend, kTakeBody, kTakeSecondBody, kGoesOn };

// Sends and receives bodies, and misbehaves as told in one of its calls.
struct TestHandler final : Handler {
  Next Send(std::span<char> room, std::size_t& count) override {
    if (trouble == Call::kSend) act();
    count = std::min(room.size(), to_send);
    std::fill_n(room.begin(), count, 'x');
    to_send -= count;
    return Next::kGoOn;
  }
  Next TakeBody(std::span<const char> bytes) override {
    if (trouble == Call::kTakeBody || (trouble == Call::kTakeSecondBody && !taken.empty())) act();
    taken.append(bytes.begin(), bytes.end());
    return Next::kGoOn;
  }
  bool GoesOn(const Progress&) override {
    if (trouble == Call::kGoesOn) act();
    return true;
  }

  Call trouble = Call::kNone;
  std::function<void()> act;
  std::size_t to_send = 100'000;
  std::string taken;
};

struct CurlTransfer : testing::Test {
  void Prepare(Transfer& transfer, bool is_upload) {
    transfer.Set(CURLOPT_URL, ("file://" + folder.At(is_upload ? "up" : "down")).c_str());
    transfer.Set(CURLOPT_UPLOAD, is_upload ? 1L : 0L);
  }

  const TempFolder folder;
  const std::string bytes = folder.Write("down", std::string(100'000, 'y'));
  CurlHandle handle;
  const Deadlines deadlines{std::chrono::seconds(9), std::chrono::seconds(9)};
};

// None of them may pass through libcurl, which is not written for exceptions.
TEST_F(CurlTransfer, WhatAHandlerThrowsLeavesTheRun) {
  for (const Call trouble : {Call::kSend, Call::kTakeBody, Call::kTakeSecondBody, Call::kGoesOn}) {
    for (const bool is_memory_short : {true, false}) {
      TestHandler handler;
      handler.trouble = trouble;
      handler.act = [=] {
        if (is_memory_short) throw std::bad_alloc();
        throw std::runtime_error("x");
      };
      Transfer transfer(handle, handler, deadlines, "", Transfer::Sending::kOnce);
      Prepare(transfer, trouble == Call::kSend);
      const auto run = [&] { return transfer.RunUntil([] { return false; }); };
      if (is_memory_short) {
        EXPECT_THROW(run(), std::bad_alloc);
      } else {
        EXPECT_THROW(run(), std::runtime_error);
      }
      EXPECT_FALSE(run()) << "it is over";
      EXPECT_NE(transfer.Outcome(), CURLE_OK);
      EXPECT_LT(handler.taken.size(), 100'000U);
    }
  }
}

TEST_F(CurlTransfer, AnOptionThatIsNotTakenEndsItBeforeItBegins) {
  TestHandler handler;
  Transfer transfer(handle, handler, deadlines, "", Transfer::Sending::kAgain);
  Prepare(transfer, false);
  transfer.Set(CURLOPT_USERNAME, std::string(9'000'000, 'u').c_str());
  EXPECT_FALSE(transfer.IsSetUp());
  EXPECT_FALSE(transfer.RunUntil([] { return false; }));
  EXPECT_FALSE(transfer.HasBegun());
  EXPECT_EQ(handler.taken, "");
}

}  // namespace
}  // namespace qv::curl
