// Redirection of the C runtime's first descriptor.
#include "tests/kit/StdoutCapture.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace kit {
namespace {

constexpr int kStandardOutput = 1;

/// The mode of a descriptor can only be asked for by setting another.
int ModeOf(int descriptor) {
    const int mode = _setmode(descriptor, _O_BINARY);
    if (mode != -1) {
        _setmode(descriptor, mode);
    }
    return mode;
}

} // namespace

StdoutCapture::StdoutCapture() {
    std::fflush(stdout);
    m_mode = ModeOf(kStandardOutput);
    const int file =
        _wopen(m_file.Path().c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (file == -1 || m_mode == -1) {
        throw std::runtime_error("standard output cannot be captured");
    }
    m_original = _dup(kStandardOutput);
    _dup2(file, kStandardOutput);
    _close(file);
    _setmode(kStandardOutput, m_mode);
}

StdoutCapture::~StdoutCapture() {
    Restore();
}

std::string StdoutCapture::Finish() {
    Restore();
    return m_file.Read();
}

void StdoutCapture::Restore() {
    if (m_original == -1) {
        return;
    }
    std::fflush(stdout);
    _dup2(m_original, kStandardOutput);
    _close(m_original);
    _setmode(kStandardOutput, m_mode);
    m_original = -1;
}

} // namespace kit
