// The way from the C runtime's start to the program's first line leads through the library of these tests.
// The linker makes the names (--wrap).
extern "C" {

int ShortageMain(int (*program)(int, wchar_t*[]), int argumentCount, wchar_t* arguments[]);

int __real_wmain(int argumentCount, wchar_t* arguments[]);

int __wrap_wmain(int argumentCount, wchar_t* arguments[]) {
    return ShortageMain(&__real_wmain, argumentCount, arguments);
}
}
