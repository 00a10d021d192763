// What the program says to those who start it by hand.
#pragma once

#include <windows.h>

#include <string_view>

namespace kemba::substitute {

/// Writes a text to a console as it is, to a file or a pipe as bytes of the ANSI code page. Whether all of it
/// was written.
bool WriteText(HANDLE output, std::wstring_view text);

/// Write to standard output and to standard error or, if they lead nowhere, to the console of the process
/// that started this one, if it has one: a program of the windows subsystem is given none of its own.
void Say(std::wstring_view text);
void Complain(std::wstring_view text);

} // namespace kemba::substitute
