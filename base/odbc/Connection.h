// A connection to a database through its ODBC driver.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Diagnostics.h"

namespace qv::odbc {

struct Limits {
  // In seconds; 0 means without limit. Drivers need not honour either.
  std::uint32_t login_seconds = 15;
  std::uint32_t query_seconds = 0;
  // Tells the driver that nothing will be changed; most drivers ignore it.
  bool reads_only = false;
};

// One thread at a time. Every failing call adds to the diagnostics; nothing is printed.
class Connection {
 public:
  // Connects by an ODBC connection text ("Driver=...;Database=...") without prompting. Returns null
  // on failure.
  [[nodiscard]] static std::unique_ptr<Connection> Open(std::string_view text, const Limits& limits,
                                                        Diagnostics& diagnostics);
  // Rolls back a transaction that was not committed.
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Statements are committed one by one until Begin, and again after Commit and Rollback. If Commit
  // fails, the transaction stays open and must be rolled back. Roll back as well after a statement
  // of it failed: some drivers have done so already, and would run the following statements on
  // their own. Returns false if the driver fails.
  [[nodiscard]] bool Begin(Diagnostics& diagnostics);
  [[nodiscard]] bool Commit(Diagnostics& diagnostics);
  bool Rollback(Diagnostics& diagnostics);

  // Returns the name of the database engine, or an empty text if the driver does not tell.
  [[nodiscard]] std::string Product() const;

  // Returns true if the driver knows that its server is gone.
  [[nodiscard]] bool IsLost() const;

 private:
  friend class Statement;

  explicit Connection(const Limits& limits) : limits_(limits) {}

  [[nodiscard]] bool Prepare(Diagnostics& diagnostics);
  [[nodiscard]] bool Connect(std::string_view text, Diagnostics& diagnostics);
  [[nodiscard]] bool ConnectAs(bool wide, std::string_view text, Diagnostics& diagnostics);
  [[nodiscard]] bool SetAutocommit(bool on, Diagnostics& diagnostics);
  [[nodiscard]] bool End(std::int16_t how, Diagnostics& diagnostics);
  bool Failed(Diagnostics& diagnostics) const;
  void Disconnect();

  void* environment_ = nullptr;  // handles of the driver manager
  void* connection_ = nullptr;
  bool is_connected_ = false;
  bool is_wide_ = true;  // the driver's text is UTF-16
  bool in_transaction_ = false;
  Limits limits_;
};

}  // namespace qv::odbc
