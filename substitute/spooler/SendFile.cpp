// Sending a file to a printer.
#include "substitute/spooler/SendFile.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "substitute/base/Failure.h"
#include "substitute/base/InputFile.h"
#include "substitute/base/Paths.h"
#include "substitute/spooler/PrintJob.h"
#include "substitute/spooler/Printer.h"

namespace kemba::substitute {
namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;

} // namespace

void SendFileTo(const Printer& printer, const std::wstring& path, const std::wstring& documentName) {
    if (!IsAbsolutePath(path)) {
        throw WindowsFailure(L"the file's path \"" + path + L"\" is not absolute", ERROR_BAD_PATHNAME);
    }
    InputFile file(L"file", path);
    std::vector<char> block(kBlock);
    const auto read = [&] { return std::string_view(block.data(), file.Read(block.data(), block.size())); };
    std::string_view bytes = read();
    if (bytes.empty()) {
        throw WindowsFailure(L"the file \"" + path + L"\" is empty", ERROR_INVALID_DATA);
    }
    PrintJob job(printer, documentName.empty() ? std::wstring(FileNameOf(path)) : documentName);
    for (; !bytes.empty(); bytes = read()) {
        job.Write(bytes);
    }
    job.Finish();
}

} // namespace kemba::substitute
