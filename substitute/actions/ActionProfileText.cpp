// The text of an action profile.
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "automation/Actions.h"
#include "core/WordTable.h"
#include "substitute/actions/ActionKind.h"
#include "substitute/actions/ActionProfile.h"
#include "substitute/base/Failure.h"
#include "substitute/base/NumberText.h"

namespace kemba::substitute {
namespace {

/// The names of the codes 0 to 31, in their order.
constexpr std::array<std::string_view, 32> kControlNames = {
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT", "LF",  "VT",  "FF", "CR", "SO", "SI",
    "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB", "CAN", "EM", "SUB", "ESC", "FS", "GS", "RS", "US",
};

bool IsBlank(char character) {
    return character == ' ' || character == '\t';
}

bool IsWordEnd(char character) {
    return IsBlank(character) || character == '"' || character == '#' || character == '=';
}

int HexValue(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'A' && digit <= 'F') {
        return digit - 'A' + 10;
    }
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

/// The action that a profile may define, by its word in any case; null for any other word.
const Action* FindProfileAction(std::string_view word) {
    if (word.find('\0') != word.npos) {
        return nullptr;
    }
    const Action* const action = OCore::FindRow(kActions, std::wstring(word.begin(), word.end()).c_str());
    return action && KindOf(action->code) == ActionKind::FromProfile ? action : nullptr;
}

/// Reads the lines one after the other.
class Parser {
  public:
    explicit Parser(const std::wstring& name) : m_name(name) {}

    ActionProfile Parse(std::string_view text) {
        constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF"; // some editors put it before the text
        if (text.substr(0, kUtf8Mark.size()) == kUtf8Mark) {
            text.remove_prefix(kUtf8Mark.size());
        }
        while (!text.empty()) {
            ++m_line;
            const std::size_t length = text.find('\n');
            m_rest = text.substr(0, length);
            text.remove_prefix(length == text.npos ? text.size() : length + 1);
            if (!m_rest.empty() && m_rest.back() == '\r') {
                m_rest.remove_suffix(1);
            }
            ParseLine();
        }
        RefuseEmptyAction();
        return m_profile;
    }

  private:
    void ParseLine() {
        const bool continues = !m_rest.empty() && IsBlank(m_rest.front());
        if (SkipBlanks()) {
            if (!continues) {
                StartAction();
            } else if (!m_bytes) {
                Refuse(L"an indented line goes on with an action, and there is none before it");
            }
            while (SkipBlanks()) {
                ParseItem();
            }
        }
    }

    /// Goes to the next item; false at the end of the line or at a comment.
    bool SkipBlanks() {
        while (!m_rest.empty() && IsBlank(m_rest.front())) {
            m_rest.remove_prefix(1);
        }
        return !m_rest.empty() && m_rest.front() != '#';
    }

    void StartAction() {
        RefuseEmptyAction();
        const std::string_view word = TakeWord();
        const Action* const action = FindProfileAction(word);
        if (!action) {
            Refuse(L"no action of a profile is called \"" + Readable(word) + L"\"");
        }
        if (!SkipBlanks() || m_rest.front() != '=') {
            Refuse(L"\"=\" is missing after \"" + Readable(word) + L"\"");
        }
        m_rest.remove_prefix(1);
        const auto [place, isNew] = m_profile.try_emplace(static_cast<LONG>(action->code));
        if (!isNew) {
            Refuse(L"the action \"" + Readable(word) + L"\" is there twice");
        }
        m_bytes = &place->second;
        m_actionLine = m_line;
    }

    void ParseItem() {
        if (m_rest.front() == '"') {
            ParseQuoted();
            return;
        }
        const std::string_view word = TakeWord();
        NeedItemEnd(word);
        if (word.size() == 4 && word.substr(0, 2) == "0x" && HexValue(word[2]) >= 0 &&
            HexValue(word[3]) >= 0) {
            m_bytes->push_back(static_cast<char>(HexValue(word[2]) * 16 + HexValue(word[3])));
            return;
        }
        for (std::size_t code = 0; code < kControlNames.size(); ++code) {
            if (word == kControlNames[code]) {
                m_bytes->push_back(static_cast<char>(code));
                return;
            }
        }
        Refuse(L"\"" + Readable(word) +
               L"\" is neither a byte such as 0x1B, nor a text in quotes, nor a control character's name");
    }

    void ParseQuoted() {
        const std::size_t end = m_rest.find('"', 1);
        if (end == m_rest.npos) {
            Refuse(L"the closing quote is missing");
        }
        const std::string_view item = m_rest.substr(0, end + 1);
        const std::string_view quoted = item.substr(1, item.size() - 2);
        for (const char character : quoted) {
            if (character < ' ' || character > '~') {
                Refuse(L"a text in quotes holds printable ASCII characters only");
            }
        }
        m_bytes->append(quoted);
        m_rest.remove_prefix(item.size());
        NeedItemEnd(item);
    }

    /// Items are separated by blanks; a comment may follow at once.
    void NeedItemEnd(std::string_view item) const {
        if (!m_rest.empty() && !IsBlank(m_rest.front()) && m_rest.front() != '#') {
            Refuse(L"a blank is missing after " + Readable(item));
        }
    }

    /// The characters up to the next blank, quote, comment or "=", one at least.
    std::string_view TakeWord() {
        std::size_t length = 1;
        while (length < m_rest.size() && !IsWordEnd(m_rest[length])) {
            ++length;
        }
        const std::string_view word = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        return word;
    }

    void RefuseEmptyAction() {
        if (m_bytes && m_bytes->empty()) {
            m_line = m_actionLine;
            Refuse(L"the action has no bytes");
        }
    }

    /// ASCII as it is, anything else as "?".
    static std::wstring Readable(std::string_view bytes) {
        std::wstring text;
        for (const char byte : bytes) {
            text += byte >= ' ' && byte <= '~' ? static_cast<wchar_t>(byte) : L'?';
        }
        return text;
    }

    [[noreturn]] void Refuse(const std::wstring& reason) const {
        throw Failure{HRESULT_FROM_WIN32(ERROR_INVALID_DATA),
                      L"action profile \"" + m_name + L"\", line " + NumberText(m_line) + L": " + reason};
    }

    const std::wstring& m_name;
    ActionProfile m_profile;
    std::string_view m_rest; // of the line
    std::size_t m_line = 0;
    std::string* m_bytes = nullptr; // of the present action
    std::size_t m_actionLine = 0;
};

} // namespace

ActionProfile ParseActionProfile(std::string_view text, const std::wstring& name) {
    return Parser(name).Parse(text);
}

} // namespace kemba::substitute
