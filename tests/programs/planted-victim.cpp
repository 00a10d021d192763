// planted-victim LIBRARY ...: imports the spooler's library and VERSION.dll as programs commonly do, and asks
// for the libraries by name alone.
#include <windows.h>
#include <winspool.h>

int wmain(int count, wchar_t* words[]) {
    if (count == 0) { // never: the imports are what counts
        DWORD size = GetFileVersionInfoSizeW(L"", nullptr);
        EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 1, nullptr, 0, &size, &size);
    }
    for (int index = 1; index < count; ++index) {
        LoadLibraryW(words[index]);
    }
    return 0;
}
