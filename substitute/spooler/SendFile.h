// Sending a file to a printer.
#pragma once

#include <string>

#include "substitute/spooler/Printer.h"

namespace kemba::substitute {

/// Sends the file's bytes unchanged as one job, block by block, under the document's name or, if that is
/// empty, the file's. Nobody may write to the file meanwhile. The path has to be absolute, since the server
/// does not know the client's folder. Throws Failure; an empty file is one, and so is a folder or a device.
void SendFileTo(const Printer& printer, const std::wstring& path, const std::wstring& documentName);

} // namespace kemba::substitute
