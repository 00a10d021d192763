// Taking back what a run made, by its record.
#pragma once

#include <string>
#include <vector>

#include "demo/Made.h"

namespace acceptance {

/// Kinds beside those of the printers.
inline constexpr char kMadeRegistration[] =
    "registration";                                  ///< its words: "/unregserver /user", or without the last
inline constexpr char kMadeTestKeys[] = "test-keys"; ///< what the tests of the registration write
inline constexpr char kMadeMask[] = "mask";          ///< kemba's value for its log, and the keys above it
inline constexpr char kDone[] = "done";              ///< a kind that was taken back long before the end
inline constexpr char kMadeFolder[] = "folder";      ///< for temporary files
inline constexpr char kDefaultPrinter[] = "default"; ///< which was the default printer before

/// How such a folder's name begins; no other is taken.
inline constexpr wchar_t kFolderBegin[] = L"kemba-acceptance-";

/// Each once, in the order in which it is to be taken back: what uses another goes before that.
std::vector<demo::Made> InOrder(std::vector<demo::Made> made);

/// Takes everything back; what is there no more is passed over. Gives what is still there, a line each.
std::vector<std::string> TakeBack(const std::vector<demo::Made>& made);

} // namespace acceptance
