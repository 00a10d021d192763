// Matching of calls with the script's rules.
#include "tests/kit/Script.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kit {

Rule::Rule(std::string target, Answer answer) : m_target(std::move(target)), m_answer(std::move(answer)) {}

Rule& Rule::WithInformation(std::optional<std::wstring> source, std::optional<std::wstring> description) {
    m_answer.hasInformation = true;
    m_answer.source = std::move(source);
    m_answer.description = std::move(description);
    return *this;
}

Rule& Rule::ForPrinter(std::wstring name) {
    m_printer = std::move(name);
    return *this;
}

Rule& Rule::ForObject(int number) {
    m_object = number;
    return *this;
}

Rule& Rule::ForCall(int number) {
    m_call = number;
    return *this;
}

bool Rule::Matches(std::string_view target, const Occasion& occasion) const {
    return m_target == target && m_printer.value_or(occasion.printer) == occasion.printer &&
           m_object.value_or(occasion.object) == occasion.object &&
           m_call.value_or(occasion.call) == occasion.call;
}

Rule& Script::Add(std::string target, Answer answer) {
    return m_rules.emplace_back(std::move(target), std::move(answer));
}

const Answer* Script::Find(std::string_view target, const Occasion& occasion) const {
    const auto newest = std::find_if(m_rules.rbegin(), m_rules.rend(),
                                     [&](const Rule& rule) { return rule.Matches(target, occasion); });
    return newest == m_rules.rend() ? nullptr : &newest->GetAnswer();
}

} // namespace kit
