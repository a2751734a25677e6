// A server in a folder of its own, and clients that send raw bytes.
#pragma once

#include <gtest/gtest.h>

#include <boost/asio/ip/address.hpp>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "message/LittleEndian.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WholeFrame.h"
#include "tools/qvstandin/net/ClientStream.h"
#include "tools/qvstandin/net/StandIn.h"

namespace qv::standin {

inline constexpr std::chrono::seconds kPatience{20};
inline const std::string kForever =
    "with recursive n(i) as (select 1 union all select i + 1 from n) select count(*) from n";

inline std::string FrameOf(std::uint32_t command, const std::vector<std::string>& fields,
                           const std::string& token = {}, wire::OutgoingFile* file = nullptr) {
  WholeFrame frame{.token = token};
  StoreU32(frame.block.data(), command);
  for (const std::string& field : fields) frame.payload += Field(field);
  MemoryStream stream;
  EXPECT_EQ(SendWhole(stream, wire::FrameKind::kRequest, frame, file), wire::FrameStatus::kDone);
  return stream.written;
}

// Sends any bytes and reads what comes, as bytes or as frames.
class RawClient {
 public:
  explicit RawClient(std::uint16_t port) : stream_(kPatience) {
    stream_.Peer().connect({boost::asio::ip::make_address("127.0.0.1"), port});
  }

  // Returns false if the server did not receive them.
  bool Send(const std::string& bytes) { return stream_.Write({BytesOfText(bytes)}); }
  // Returns `length` bytes, or none if they did not come.
  std::string Read(std::size_t length) {
    std::string bytes(length, '\0');
    const wire::WritableBytes room(reinterpret_cast<unsigned char*>(bytes.data()), length);
    return stream_.Read(room) ? bytes : "";
  }
  wire::ByteStream& Stream() { return stream_; }
  // Waits until something has come.
  bool Await() { return stream_.WaitForRequest(kPatience); }
  // Returns the reply's fields if a whole frame comes. Its file goes to `path`.
  std::vector<std::string> Fields(const std::string& path = {}) {
    const WholeFrame reply = ReceiveWhole(stream_, wire::FrameKind::kReply, path);
    return reply.status == wire::FrameStatus::kDone ? FieldsOf(reply.payload)
                                                    : std::vector<std::string>();
  }
  // Returns the first of the reply's fields.
  std::string Status(const std::string& path = {}) {
    const auto fields = Fields(path);
    return fields.empty() ? "" : fields[0];
  }
  [[nodiscard]] bool IsHungUpOn() {
    const auto start = std::chrono::steady_clock::now();
    return Read(1).empty() && std::chrono::steady_clock::now() - start < kPatience;
  }

 private:
  ClientStream stream_;
};

class ServerTest : public testing::Test {
 protected:
  void Start() {
    options_.data_folder = folder_.At();
    server_.emplace(options_);
    std::string error;
    ASSERT_TRUE(server_->Start(&error)) << error;
  }

  const TempFolder folder_;
  StandInOptions options_;
  std::optional<StandIn> server_;
};

}  // namespace qv::standin
