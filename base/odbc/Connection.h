// A connection to a database through its ODBC driver.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Diagnostics.h"

namespace qv::odbc {

struct Limits {
  // In seconds; 0 is as long as it takes. Both are as good as the driver's word.
  std::uint32_t login_seconds = 15;
  std::uint32_t query_seconds = 0;
  // Tells the driver that nothing will be changed; few care.
  bool reads_only = false;
  // The longest cell that is read, in bytes as the driver gives it.
  std::size_t cell_bytes = std::size_t{1} << 30;
};

// For one thread at a time. Every call that fails adds to its diagnostics, and nothing is printed.
class Connection {
 public:
  // Connects as an ODBC connection text says ("Driver=...;Database=...") without asking anybody.
  // Null when it cannot.
  [[nodiscard]] static std::unique_ptr<Connection> Open(std::string_view text, const Limits& limits,
                                                        Diagnostics& diagnostics);
  // Takes back a transaction that was not committed.
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Statements are committed one by one until Begin, and again after Commit and Rollback. When
  // Commit fails, the transaction goes on, to be rolled back; roll back too when a statement of it
  // has failed: some drivers have done so by then, and run what follows on its own. False when the
  // driver cannot.
  [[nodiscard]] bool Begin(Diagnostics& diagnostics);
  [[nodiscard]] bool Commit(Diagnostics& diagnostics);
  bool Rollback(Diagnostics& diagnostics);

  // What the engine calls itself; empty when it does not say.
  [[nodiscard]] std::string Product() const;

  // Whether the driver knows that its server is gone.
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
