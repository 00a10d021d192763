// Which files count as a printer driver's own.
#pragma once

#include <string_view>

namespace kemba::substitute {

/// Whether the path names something below the folder, at any depth, whatever the case of the letters. Nothing
/// is looked up: both have to be absolute ("C:\...", "\\server\...", either also behind "\\?\"), with "/" or
/// "\", and a path that Windows would read otherwise than it is written ("..", a part that ends in a dot or a
/// blank, a stream's name behind a colon) is below no folder.
bool IsBelowFolder(std::wstring_view path, std::wstring_view folder);

} // namespace kemba::substitute
