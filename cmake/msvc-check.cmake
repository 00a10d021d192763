# Compiles what MSVC would, with clang in its place, as far as that goes: `./dev check msvc` uses it on Debian. Windows'
# headers are Wine's, the standard library's are those of libc++, and what both lack for each other is written here.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER clang-cl-19)
set(CMAKE_CXX_COMPILER clang-cl-19)
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Nothing is linked: there are no libraries.
set(CMAKE_AR true)
set(CMAKE_LINKER true)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(own_headers ${CMAKE_BINARY_DIR}/headers)
file(CONFIGURE OUTPUT ${own_headers}/Before.h @ONLY CONTENT [[
#include <math.h>
#include <stdlib.h>
#include <wchar.h>
#ifdef __cplusplus
#undef isfinite
#undef isinf
#undef isnan
template<class Number> bool isfinite(Number number) { return __builtin_isfinite(number); }
template<class Number> bool isinf(Number number) { return __builtin_isinf(number); }
template<class Number> bool isnan(Number number) { return __builtin_isnan(number); }
struct timespec { long long tv_sec; long tv_nsec; };
#define MB_CUR_MAX 5
extern "C" {
int _islower_l(int, _locale_t);
int _isupper_l(int, _locale_t);
float _strtof_l(const char*, char**, _locale_t);
double _strtod_l(const char*, char**, _locale_t);
#define __C89_NAMELESS
unsigned _set_abort_behavior(unsigned, unsigned);
typedef int WINBOOL;
}
inline long long abs(long long number) { return number < 0 ? -number : number; }
#define _WRITE_ABORT_MSG 1
#define _CALL_REPORTFAULT 2
#define COM_RIGHTS_EXECUTE 1
#define COM_RIGHTS_EXECUTE_LOCAL 2
#define COM_RIGHTS_EXECUTE_REMOTE 4
#endif
]])
# Wine's has interfaces without their identifiers.
file(CONFIGURE OUTPUT ${own_headers}/rpcndr.h @ONLY CONTENT [[
#include_next <rpcndr.h>
#undef DECLSPEC_UUID
#undef MIDL_INTERFACE
#define DECLSPEC_UUID(text) __declspec(uuid(text))
#define MIDL_INTERFACE(text) struct __declspec(uuid(text)) __declspec(novtable)
]])
# With the hooks as MSVC has them.
file(READ /usr/x86_64-w64-mingw32/include/delayimp.h delayed)
string(REPLACE "ExternC PfnDliHook" "ExternC const PfnDliHook" delayed "${delayed}")
file(CONFIGURE OUTPUT ${own_headers}/delayimp.h CONTENT "${delayed}" @ONLY)

set(libcxx ${CMAKE_CURRENT_LIST_DIR}/../build/libc++/usr/lib/llvm-19/include/c++/v1)
set(clang /usr/lib/llvm-19/lib/clang/19/include)
set(wine /usr/include/wine/wine)
# Extensions of GCC are told, those of MSVC are at home.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
    -fms-compatibility-version=19.40 /X -nobuiltininc /FI${own_headers}/Before.h -imsvc${own_headers}
    -imsvc${libcxx} -imsvc${clang} -imsvc${wine}/msvcrt -imsvc${wine}/windows
    -Wpedantic -Wgnu -Wno-language-extension-token -Wgcc-compat
    -D_UCRT -DWINE_UNICODE_NATIVE -D_LIBCPP_NO_VCRUNTIME -D_InterlockedCompareExchange128=WineCompareExchange128)
set(CMAKE_C_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")
