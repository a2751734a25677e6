#include "HttpState.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/text/Letters.h"
#include "transports/frame/Frame.h"

namespace qv::wire {

namespace {

static_assert(text::kLongestParameter <= kMaxToken, "a token that was taken can be sent");

using Settings = HttpSettings;

constexpr text::Parameter<Settings> kParameters[] = {
    text::TextParameter<Settings, &Settings::token>("token"),
    text::SwitchParameter<Settings, &Settings::use_tls>("tls"),
    text::TextParameter<Settings, &Settings::ca_file>("ca_file"),
    text::MillisecondsParameter<Settings, &Settings::connect_timeout>("connect_timeout_ms"),
    text::MillisecondsParameter<Settings, &Settings::io_timeout>("io_timeout_ms"),
};

constexpr std::size_t kMaxServers = 64;
constexpr std::size_t kLongestToken = 255;

}  // namespace

HttpParameters::HttpParameters() : ParameterSet(kParameters) {}

LoginTokens::LoginTokens() { entries_.reserve(kMaxServers); }

bool LoginTokens::IsToken(std::string_view text) {
  return !text.empty() && text.size() <= kLongestToken && text::IsVisible(text);
}

void LoginTokens::Keep(const std::string& url, std::string_view token) noexcept {
  try {
    Entry entry{url, std::string(token)};
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [&](const Entry& one) { return one.url == url; });
    if (entries_.size() == kMaxServers) entries_.erase(entries_.begin());
    entries_.push_back(std::move(entry));
  } catch (const std::bad_alloc&) {
    // Without the token the server accepts the request or demands a new login.
  }
}

std::string LoginTokens::Of(const std::string& url) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& one) { return one.url == url; });
  return found != entries_.end() ? found->token : std::string();
}

std::string LoginTokens::Last() const {
  const std::lock_guard lock(mutex_);
  return entries_.empty() ? std::string() : entries_.back().token;
}

void LoginTokens::Clear() {
  const std::lock_guard lock(mutex_);
  entries_.clear();
}

}  // namespace qv::wire
