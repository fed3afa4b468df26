#pragma once
// Why a connection failed, as the connection adapters report it to a session.
// The values are the socket error numbers that log lines and error boxes
// print; a failure without a name of its own carries 10000 plus the socket
// library's own code, so any other value may arrive.
namespace vonel::protocol {

enum class SocketError {
  AddressNotAvailable = 10049,
  NetworkUnreachable = 10051,
  ConnectionAborted = 10053,
  TimedOut = 10060,
  ConnectionRefused = 10061,
  HostUnreachable = 10065,
  HostNotFound = 11001,
  NoAddressForName = 11004,
};

// The number printed for the error.
constexpr int number(SocketError error) { return static_cast<int>(error); }

}  // namespace vonel::protocol
