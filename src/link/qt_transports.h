// The real lines: a serial port at 9600,N,8,1, and a raw TCP connection to a serial gateway
// (ser2net, Ethernet-serial adapters). Both block in the operating system while they wait.
#pragma once

#include <QSerialPort>
#include <QTcpSocket>
#include <memory>

#include "link/transport.h"

namespace talvex::link {

inline constexpr const char* kPortSettings = "9600,N,8,1";
// The receive buffer holds one block reply.
inline constexpr qint64 kReceiveBufferSize = 304;

class SerialTransport final : public Transport {
 public:
  SerialTransport(std::string portName, Clock& clock);

  std::string Name() const override { return portName_; }
  std::string Open() override;
  void Close() override;
  bool IsOpen() const override;
  bool Write(std::span<const std::uint8_t> bytes) override;
  std::size_t WaitForBytes(std::size_t count, Clock::TimePoint deadline) override;
  std::size_t Read(std::span<std::uint8_t> out) override;
  void DiscardInput() override;

 private:
  std::string portName_;
  Clock& clock_;
  std::unique_ptr<QSerialPort> port_;
};

class TcpTransport final : public Transport {
 public:
  TcpTransport(std::string host, int port, Clock& clock);

  std::string Name() const override;
  std::string Open() override;
  void Close() override;
  bool IsOpen() const override;
  bool Write(std::span<const std::uint8_t> bytes) override;
  std::size_t WaitForBytes(std::size_t count, Clock::TimePoint deadline) override;
  std::size_t Read(std::span<std::uint8_t> out) override;
  void DiscardInput() override;

 private:
  std::string host_;
  int port_;
  Clock& clock_;
  std::unique_ptr<QTcpSocket> socket_;
};

}  // namespace talvex::link
