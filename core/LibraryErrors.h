// What the standard library's own code, and a container of ours, throw for what is too long.
#pragma once

#include <new>

namespace OCore {

/// The runtime's length error: more was asked for than could ever be counted, which is out of memory, too.
/// Its words are a literal of whoever throws it.
class LengthError : public std::bad_alloc {
  public:
    explicit LengthError(const char* words) noexcept : m_words(words) {}
    const char* what() const noexcept override { return m_words; }

  private:
    const char* m_words;
};

} // namespace OCore
