#pragma once
// The socket failures of Qt as the error numbers the sessions log and report.
#include <QAbstractSocket>

#include "protocol/socket_error.h"

namespace vonel {

protocol::SocketError toSocketError(QAbstractSocket::SocketError error);

}  // namespace vonel
