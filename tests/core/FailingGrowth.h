// A shortage of memory for what grows in place.
#pragma once

namespace kit {

/// While it lives, one reallocation of this program fails: number `which`, counted from 1. One at a time.
class FailingGrowth {
  public:
    explicit FailingGrowth(int which);
    FailingGrowth(const FailingGrowth&) = delete;
    FailingGrowth& operator=(const FailingGrowth&) = delete;
    ~FailingGrowth();

    bool HasFailed() const;
};

} // namespace kit
