// What a program costs that starts and ends the component runtime, as each of kemba's commands does.
#include <windows.h>
#include <objbase.h>

int main() {
    const bool started = SUCCEEDED(CoInitialize(nullptr));
    CoUninitialize();
    return started ? 0 : 1;
}
