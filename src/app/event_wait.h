#pragma once
// Waiting while the event loop goes on running timers and sockets.
namespace vonel {

void processEventsOnce();
void waitWhileEventsRun(int milliseconds);

}  // namespace vonel
