// The fake server's script: which operation answers what, and when.
#pragma once

#include <windows.h>
#include <wtypes.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kit {

/// What a call does in place of its default.
struct Answer {
    HRESULT status = S_OK;
    bool throws = false; ///< leaves by a C++ exception instead of a status
    bool hasInformation = false;
    std::optional<std::wstring> source;      ///< none: asking the error information for it fails
    std::optional<std::wstring> description; ///< none: asking the error information for it fails
    std::optional<std::wstring> text;
    bool givesNull = false; ///< a null text or a null interface pointer
    std::optional<VARIANT_BOOL> flag;
    std::function<void()> work; ///< done during the call
};

/// The circumstances of one call.
struct Occasion {
    std::wstring printer; ///< what the object is bound to; empty when it is not
    int object = 0;       ///< the object's number
    int call = 0;         ///< which call of this operation on this object it is, from 1
};

/// One line of the script. Its conditions narrow it, all of them apply; without any it holds for every call.
class Rule {
  public:
    Rule(std::string target, Answer answer);

    /// The failure carries error information; without a text the request for it fails.
    Rule& WithInformation(std::optional<std::wstring> source, std::optional<std::wstring> description);
    /// Only for objects that are bound to this printer. An action request counts as bound to the printer of
    /// the object that last performed it.
    Rule& ForPrinter(std::wstring name);
    /// Only for the object of this number.
    Rule& ForObject(int number);
    /// Only for that call of the operation on an object, counted from 1.
    Rule& ForCall(int number);

    bool Matches(std::string_view target, const Occasion& occasion) const;
    const Answer& GetAnswer() const { return m_answer; }

  private:
    std::string m_target;
    Answer m_answer;
    std::optional<std::wstring> m_printer;
    std::optional<int> m_object;
    std::optional<int> m_call;
};

/// All rules; a later one wins over an earlier one that matches too.
class Script {
  public:
    /// The rule stays where it is while others are added.
    Rule& Add(std::string target, Answer answer);
    /// The answer for a call, or null when the script says nothing about it.
    const Answer* Find(std::string_view target, const Occasion& occasion) const;

  private:
    std::deque<Rule> m_rules;
};

} // namespace kit
