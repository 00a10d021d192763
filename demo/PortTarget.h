// The other end of a printer port on Wine: a file that collects what is printed.
#pragma once

#include <string>

namespace demo {

/// Appends everything that is printed to the port, byte for byte, to the file (a Windows path). Any port name
/// will do. Throws SpoolerError, with error 120 where the program does not run on Wine.
void ConnectPort(const std::wstring& port, const std::wstring& file);

/// Undoes ConnectPort; does nothing for a port that is not connected.
void DisconnectPort(const std::wstring& port);

} // namespace demo
