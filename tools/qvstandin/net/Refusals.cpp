#include "Refusals.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <utility>

#include "HttpMessage.h"
#include "base/text/Letters.h"
#include "transports/frame/FrameIo.h"

namespace qv::standin {

namespace {

using std::chrono_literals::operator""ms;

constexpr std::chrono::milliseconds kLongestStep = 2000ms;
constexpr std::chrono::milliseconds kPause = 10ms;
constexpr std::size_t kMostHeard = 8192;
constexpr std::string_view kHeadEnd = "\r\n\r\n";

// Keeps what is written to it.
class Written : public wire::ByteStream {
 public:
  bool Read(wire::WritableBytes) override { return false; }
  bool Write(std::initializer_list<wire::Bytes> pieces) override {
    for (const wire::Bytes piece : pieces) bytes.append(piece.begin(), piece.end());
    return true;
  }

  std::string bytes;
};

bool BeginsLikeFrame(std::string_view bytes) {
  return std::ranges::equal(
      bytes.substr(0, wire::kFrameMagic.size()), wire::kFrameMagic,
      [](char a, unsigned char b) { return static_cast<unsigned char>(a) == b; });
}

}  // namespace

Refusal::Refusal(std::unique_ptr<ClientStream> stream, std::string text, bool takes_http)
    : stream_(std::move(stream)),
      text_(std::move(text)),
      takes_http_(takes_http),
      deadline_(Clock::now() + kLongestStep) {}

bool Refusal::GoOn() {
  if (Clock::now() >= deadline_) return false;
  switch (step_) {
    case Step::kListens:
      return Listen();
    case Step::kAnswers:
      return Answer();
    case Step::kLingers:
      return Linger();
  }
  return false;
}

bool Refusal::Listen() {
  std::array<unsigned char, kMostHeard> piece;
  const auto length = stream_->ReadNow({piece.data(), kMostHeard - heard_.size()});
  if (!length) return false;
  heard_.append(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(*length));
  const auto is_understood = Understand();
  if (!is_understood) return heard_.size() < kMostHeard;
  if (!*is_understood) return false;
  step_ = Step::kAnswers;
  return Answer();
}

std::optional<bool> Refusal::Understand() {
  if (heard_.size() < wire::kFrameMagic.size()) return std::nullopt;
  if (BeginsLikeFrame(heard_)) return UnderstandFrame();
  return takes_http_ ? UnderstandHttp() : false;
}

std::optional<bool> Refusal::UnderstandFrame() {
  if (heard_.size() < wire::kFrameHeaderSize) return std::nullopt;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(heard_.data());
  constexpr wire::FrameKind kHello[] = {wire::FrameKind::kHello, wire::FrameKind::kHello3};
  wire::FrameHeader header;
  const auto status = wire::DecodeHeader(
      std::span<const unsigned char, wire::kFrameHeaderSize>(bytes, wire::kFrameHeaderSize), kHello,
      {}, header);
  if (status != wire::FrameStatus::kDone) return false;
  Written answer;
  const bool is_written = wire::SendBusy(answer, {error::kBusy, text_});
  answer_ = std::move(answer.bytes);
  return is_written;
}

std::optional<bool> Refusal::UnderstandHttp() {
  const std::size_t end = heard_.find(kHeadEnd);
  if (end == std::string::npos) return std::nullopt;
  if (!TakesVersion2(std::string_view(heard_).substr(0, end + 2))) return false;
  const std::string body = text_ + "\n";
  answer_ = HeadText(
      {.status = HttpStatus::kBusy, .type = "text/plain", .length = body.size(), .reason = text_});
  answer_ += body;
  return true;
}

bool Refusal::Answer() {
  const auto length =
      stream_->WriteNow({reinterpret_cast<const unsigned char*>(answer_.data()), answer_.size()});
  if (!length) return false;
  answer_.erase(0, *length);
  if (!answer_.empty()) return true;
  stream_->EndSending();
  deadline_ = Clock::now() + kLongestStep;
  step_ = Step::kLingers;
  return true;
}

bool Refusal::Linger() {
  std::array<unsigned char, kMostHeard> piece;
  return stream_->ReadNow(piece).has_value();
}

void Refusals::Add(std::unique_ptr<ClientStream> stream, std::string text, bool takes_http) {
  if (refusals_.size() >= kMost) refusals_.pop_front();
  refusals_.emplace_back(std::move(stream), std::move(text), takes_http);
  if (!is_waiting_) GoOnLater();
}

void Refusals::GoOnLater() {
  is_waiting_ = true;
  timer_.expires_after(kPause);
  timer_.async_wait([this](const boost::system::error_code&) {
    is_waiting_ = false;
    refusals_.remove_if([](Refusal& refusal) { return !refusal.GoOn(); });
    if (!refusals_.empty()) GoOnLater();
  });
}

void Refusals::Close() {
  refusals_.clear();
  timer_.cancel();
}

}  // namespace qv::standin
