// Calls whose reply starts with a decimal number: a count, a flag, or the server's result.
#pragma once

#include <cstdint>
#include <new>
#include <optional>

#include "Exchange.h"
#include "base/call/LastError.h"
#include "base/text/Numbers.h"
#include "qvnetcall/ResultCodes.h"
#include "qvnetcall/framework/String.h"

namespace qv {

constexpr std::uint32_t kCatalogueRequest = 10240;
constexpr std::uint32_t kCatalogueReply = 512000;
constexpr std::uint32_t kLargeCatalogueReply = 1048576;
constexpr std::uint32_t kShortCatalogueReply = 10240;

struct CatalogueCommand {
  std::uint32_t code;
  std::uint32_t reply_bytes = kCatalogueReply;
};

// A reply that claims more bytes of records than this is treated as out of memory: no reply holds
// that many.
constexpr std::uint64_t kMostRecordBytes = 64ULL << 20;

// One call, always over the socket transport.
class CatalogueCall {
 public:
  // Takes the request's fields in order: texts, and numbers as 4 bytes. A field that cannot be
  // written, such as an empty text, is left out, and the request is sent all the same.
  template <class... Fields>
  explicit CatalogueCall(const CatalogueCommand& command, const Fields&... fields)
      : exchange_(command.code, kCatalogueRequest, command.reply_bytes) {
    (Add(fields), ...);
  }

  // Sends the request and returns the number, or 0 if the text is not a number. Returns nothing if
  // the request was not delivered; every other result of the transport counts as delivered. It is
  // the caller's to call Refused() for a number that means that; the next three do so.
  [[nodiscard]] std::optional<std::int32_t> Ask() {
    if (exchange_.Send() == result::kNotDelivered) return {};
    const std::int32_t number = text::DecimalToInt32(exchange_.Reply().GetString(nullptr).View());
    // The call is a success then, whatever the transport said of the reply.
    if (number > 0) call::ClearError();
    return number;
  }
  // Returns true if the number is 1; every other is a refusal.
  [[nodiscard]] bool AskFlag() { return Ask() == 1 || Refused(0) != 0; }
  // Returns the number if it is above zero, else 0, which is a refusal.
  [[nodiscard]] std::int32_t AskPositive() {
    const std::int32_t number = Ask().value_or(0);
    return number > 0 ? number : Refused(0);
  }
  // Returns the number if it is above zero, else 0. Only a number below zero is a refusal: there
  // may be nothing to count.
  [[nodiscard]] std::int32_t AskCount() {
    const std::int32_t number = Ask().value_or(0);
    return number >= 0 ? number : Refused(0);
  }

  // Returns the reply's next field as a text; empty if it cannot be read.
  [[nodiscard]] CString Text() { return exchange_.Reply().GetString(nullptr); }
  // Read the reply's next field; if it cannot be read, `out` keeps its value.
  void Read(CString& out) { exchange_.Reply().GetString(out, nullptr); }
  void Read(int& out) { exchange_.Reply().GetData(&out, sizeof out, nullptr); }
  void Read(void* out, std::uint32_t bytes) { exchange_.Reply().GetData(out, bytes, nullptr); }

  // Sends the request. If the number is above zero, stores it in `count` and returns that many
  // records. Otherwise returns null and leaves `count` unchanged.
  template <class Record>
  [[nodiscard]] Record* AskRecords(int& count) {
    const std::int32_t found = AskCount();
    if (found == 0) return nullptr;
    count = found;
    return ReadRecords<Record>(found);
  }
  // Returns the next field as an array of `count` > 0 records, which the caller frees with
  // delete[]. The array is zero-filled if the field does not have exactly that size. Returns null
  // if it cannot be allocated.
  template <class Record>
  [[nodiscard]] Record* ReadRecords(std::int32_t count) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(count) * sizeof(Record);
    if (bytes > kMostRecordBytes) return nullptr;
    auto* const records = new (std::nothrow) Record[static_cast<std::size_t>(count)]();
    if (records != nullptr) Read(records, static_cast<std::uint32_t>(bytes));
    return records;
  }

 private:
  void Add(const CString& text) { exchange_.Request().AddString(text, nullptr); }
  void Add(std::int32_t number) { exchange_.AddNumber(number); }

  Exchange exchange_;
};

}  // namespace qv
