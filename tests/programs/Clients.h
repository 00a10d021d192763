// Programs that run at once, each with its output in a file of its own.
#pragma once

#include <chrono>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "tests/kit/OutputChannel.h"
#include "tests/kit/Owners.h"
#include "tests/kit/ProcessRun.h"

namespace kit {

/// All are started by one thread, one after the other, and inherit nothing but their own input and output; no
/// pipe has to be emptied while they run.
class Clients {
  public:
    Clients() = default;
    Clients(const Clients&) = delete;
    Clients& operator=(const Clients&) = delete;
    /// Ends those that still run.
    ~Clients() { Finish(std::chrono::milliseconds(0)); }

    /// Starts a program, which ProgramPath finds. Throws std::runtime_error with the system's error
    /// number.
    void Start(std::wstring_view name, const std::vector<std::wstring>& words);
    /// Waits for all, and ends those that still run after that time; the results in the order of the starts,
    /// standard output and standard error together as the output.
    std::vector<ProcessResult> Finish(std::chrono::milliseconds timeout);

  private:
    struct Client {
        OutputChannel output{true};
        UniqueHandle process;
    };
    std::deque<Client> m_clients;
};

} // namespace kit
