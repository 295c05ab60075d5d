#include "link/qt_transports.h"

#include <algorithm>
#include <climits>

#include "link/port_problem.h"

namespace talvex::link {

namespace {

constexpr int kConnectTimeoutMs = 5000;
constexpr int kWriteTimeoutMs = 2000;

// Qt names the kind of failure; the device file tells permission from a port another program
// holds (Qt reports both as a permission error on Linux, and Windows says "access denied" for a
// port in use).
PortProblem ProblemOf(QSerialPort::SerialPortError error, const std::string& path) {
  switch (error) {
    case QSerialPort::DeviceNotFoundError:
      return PortProblem::NotFound;
    case QSerialPort::PermissionError:
      return CheckPortAccess(path) == PortAccess::Denied ? PortProblem::NeedsPermission
                                                         : PortProblem::Busy;
    case QSerialPort::OpenError:
      return PortProblem::Busy;
    default:
      return PortProblem::Other;
  }
}

// Milliseconds left until `deadline`, rounded up so that a wait never ends early.
int MillisecondsUntil(const Clock& clock, Clock::TimePoint deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - clock.Now()).count();
  return static_cast<int>(std::clamp<long long>(left, 0, INT_MAX));
}

// Blocks in waitForReadyRead (select/poll inside Qt) until `count` bytes are buffered, the
// deadline passes, or the device fails.
template <typename Device, typename IsTimeout>
std::size_t WaitOn(Device& device, std::size_t count, const Clock& clock, Clock::TimePoint deadline,
                   IsTimeout isTimeout) {
  while (device.isOpen() && static_cast<std::size_t>(device.bytesAvailable()) < count) {
    const int ms = MillisecondsUntil(clock, deadline);
    if (ms <= 0) break;
    if (!device.waitForReadyRead(ms) && !isTimeout(device)) break;
  }
  return device.isOpen() ? static_cast<std::size_t>(device.bytesAvailable()) : 0;
}

template <typename Device>
bool WriteAll(Device& device, std::span<const std::uint8_t> bytes) {
  const auto size = static_cast<qint64>(bytes.size());
  if (device.write(reinterpret_cast<const char*>(bytes.data()), size) != size) return false;
  while (device.bytesToWrite() > 0) {
    if (!device.waitForBytesWritten(kWriteTimeoutMs)) return false;
  }
  return true;
}

template <typename Device>
std::size_t ReadInto(Device& device, std::span<std::uint8_t> out) {
  const qint64 got =
      device.read(reinterpret_cast<char*>(out.data()), static_cast<qint64>(out.size()));
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

}  // namespace

SerialTransport::SerialTransport(std::string portName, Clock& clock)
    : portName_(std::move(portName)), clock_(clock) {}

// The port object is made here, in the thread that opens it and then uses it.
std::string SerialTransport::Open() {
  port_ = std::make_unique<QSerialPort>();
  port_->setPortName(QString::fromStdString(portName_));
  port_->setReadBufferSize(kReceiveBufferSize);
  if (!port_->open(QIODevice::ReadWrite)) {
    const PortProblem problem = ProblemOf(port_->error(), portName_);
    const std::string system = port_->errorString().toStdString();
    port_.reset();
    return "cannot open serial port " + portName_ + ": " +
           DescribePortProblem(problem, OwnerGroup(portName_)) + " (" + system + ")";
  }
  const bool configured =
      port_->setBaudRate(QSerialPort::Baud9600) && port_->setDataBits(QSerialPort::Data8) &&
      port_->setParity(QSerialPort::NoParity) && port_->setStopBits(QSerialPort::OneStop) &&
      port_->setFlowControl(QSerialPort::NoFlowControl);
  if (!configured) {
    const std::string why = port_->errorString().toStdString();
    port_.reset();
    return "cannot set " + std::string(kPortSettings) + " on " + portName_ + ": " + why;
  }
  port_->clear(QSerialPort::AllDirections);
  return {};
}

void SerialTransport::Close() {
  port_.reset();
}

bool SerialTransport::IsOpen() const {
  return port_ && port_->isOpen();
}

bool SerialTransport::Write(std::span<const std::uint8_t> bytes) {
  if (!IsOpen()) return false;
  if (WriteAll(*port_, bytes)) return true;
  if (port_->error() == QSerialPort::ResourceError) Close();  // adapter unplugged
  return false;
}

std::size_t SerialTransport::WaitForBytes(std::size_t count, Clock::TimePoint deadline) {
  if (!IsOpen()) return 0;
  const std::size_t available = WaitOn(*port_, count, clock_, deadline, [](QSerialPort& port) {
    if (port.error() != QSerialPort::TimeoutError) return false;
    port.clearError();
    return true;
  });
  if (port_->error() == QSerialPort::ResourceError) Close();
  return available;
}

std::size_t SerialTransport::Read(std::span<std::uint8_t> out) {
  return IsOpen() ? ReadInto(*port_, out) : 0;
}

void SerialTransport::DiscardInput() {
  if (IsOpen()) port_->clear(QSerialPort::Input);
}

TcpTransport::TcpTransport(std::string host, int port, Clock& clock)
    : host_(std::move(host)), port_(port), clock_(clock) {}

std::string TcpTransport::Name() const {
  return "tcp:" + host_ + ":" + std::to_string(port_);
}

std::string TcpTransport::Open() {
  socket_ = std::make_unique<QTcpSocket>();
  socket_->connectToHost(QString::fromStdString(host_), static_cast<quint16>(port_));
  if (!socket_->waitForConnected(kConnectTimeoutMs)) {
    const std::string why = socket_->errorString().toStdString();
    socket_.reset();
    return "cannot connect to " + Name() + ": " + why;
  }
  // Frames are 13 bytes: send each at once instead of waiting to fill a segment.
  socket_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
  return {};
}

void TcpTransport::Close() {
  if (socket_) socket_->abort();
  socket_.reset();
}

bool TcpTransport::IsOpen() const {
  return socket_ && socket_->state() == QAbstractSocket::ConnectedState;
}

bool TcpTransport::Write(std::span<const std::uint8_t> bytes) {
  return IsOpen() && WriteAll(*socket_, bytes);
}

std::size_t TcpTransport::WaitForBytes(std::size_t count, Clock::TimePoint deadline) {
  if (!IsOpen()) return 0;
  return WaitOn(*socket_, count, clock_, deadline, [](QTcpSocket& socket) {
    return socket.error() == QAbstractSocket::SocketTimeoutError &&
           socket.state() == QAbstractSocket::ConnectedState;
  });
}

std::size_t TcpTransport::Read(std::span<std::uint8_t> out) {
  return socket_ ? ReadInto(*socket_, out) : 0;
}

void TcpTransport::DiscardInput() {
  if (!IsOpen()) return;
  do {
    socket_->readAll();
  } while (socket_->waitForReadyRead(0));
}

}  // namespace talvex::link
