#pragma once

namespace tvx::platform {

// A descriptor that becomes readable when the system asks the program to end (SIGTERM,
// SIGINT, SIGHUP on POSIX: a logout, a shutdown, Ctrl+C), so the program can close in
// order and write its summary; -1 where the window system delivers that request itself.
int terminationDescriptor();
// Empties the descriptor once the request has been seen.
void acknowledgeTermination();

} // namespace tvx::platform
