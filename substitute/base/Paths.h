// What paths mean, without looking at any disk, and names made from them.
#pragma once

#include <string>
#include <string_view>

namespace kemba::substitute {

/// Whether the path depends on nobody's current folder or drive: "C:\..." or "\\...", "/" being as good as
/// "\".
bool IsAbsolutePath(std::wstring_view path);

/// Whether the path leads into the system's own name space, where drives as a whole, ports and pipes have
/// their names: "\\.\..." or, since it leads there as well, "\\?\..." that goes on neither with a drive and
/// "\" nor with "UNC\". Reserved names such as NUL are devices too; FullPath() shows them as "\\.\NUL".
bool IsDevicePath(std::wstring_view path);

/// Whether a full path names a stream of a file, as "C:\file:stream" does.
bool HasStreamPart(std::wstring_view fullPath);

/// Whether the path names something below the folder, at any depth, whatever the case of the letters. Nothing
/// is looked up: both have to be absolute ("C:\...", "\\server\...", either also behind "\\?\"), with "/" or
/// "\", and a path that Windows would read otherwise than it is written ("..", a part that ends in a dot or a
/// blank, a stream's name behind a colon) is below no folder.
bool IsBelowFolder(std::wstring_view path, std::wstring_view folder);

/// The path as the system understands it; itself if the system does not.
std::wstring FullPath(const std::wstring& path);

/// Throws Failure unless the path may name a file: ERROR_INVALID_NAME when it is empty or holds a zero,
/// behind which the system would not read on, ERROR_BAD_FILE_TYPE when it names a device.
void NeedFilePath(const std::wstring& path);

/// The path up to its last separator, which is included.
std::wstring_view FolderOf(std::wstring_view path);
/// The path behind its last separator.
std::wstring_view FileNameOf(std::wstring_view path);

/// A name in the same folder for a file on its way to or from that path. With an ending of three letters it
/// has 11 characters, which there is room for in every folder. Only the lowest 16 bits of the number count.
std::wstring TemporaryNameBeside(std::wstring_view path, unsigned number, const wchar_t* ending);

/// Full path of the running program's file. Throws Failure.
std::wstring ProgramPath();

} // namespace kemba::substitute
