// TCP sockets on the loopback interface, blocking, without delay.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qv::bench {

// All throw std::system_error.
class Socket {
 public:
  static Socket Connect(std::uint16_t port);
  // On a free port.
  static Socket Listen();

  Socket() = default;
  Socket(Socket&& other) noexcept;
  Socket& operator=(Socket&& other) noexcept;
  ~Socket();

  [[nodiscard]] Socket Accept() const;
  [[nodiscard]] std::uint16_t Port() const;
  void Send(std::span<const char> bytes) const;
  // Waits for one byte at least, and returns how many came; 0 at the end of the connection.
  std::size_t Receive(std::span<char> bytes) const;
  // Fills `bytes`. Returns false if the connection ends before that.
  [[nodiscard]] bool ReceiveAll(std::span<char> bytes) const;
  // Makes every later use fail, on all threads.
  void Shutdown() const;
  [[nodiscard]] int Number() const { return number_; }

 private:
  explicit Socket(int number) : number_(number) {}

  int number_ = -1;
};

}  // namespace qv::bench
