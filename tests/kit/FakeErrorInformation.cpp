// An error information object with a journal, whose texts are watched.
#include "tests/kit/FakeErrorInformation.h"

#include <oaidl.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/Owners.h"
#include "tests/kit/OneInterface.h"
#include "tests/kit/ServerState.h"
#include "tests/kit/TextWatch.h"

namespace kit {
namespace {

using Text = std::optional<std::wstring>;

class FakeErrorInformation final : public OneInterface<IErrorInfo> {
  public:
    FakeErrorInformation(std::shared_ptr<ServerState> state, Text source, Text description)
        : m_state(std::move(state)), m_source(std::move(source)), m_description(std::move(description)),
          m_label("ErrorInformation#" + std::to_string(m_state->NextNumber("ErrorInformation"))) {
        m_state->errorInformation.push_back(m_label);
    }

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* id) override {
        *id = {};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) override { return Give("GetSource", m_source, source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) override {
        return Give("GetDescription", m_description, description);
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* file) override {
        *file = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        *context = 0;
        return S_OK;
    }

  private:
    ~FakeErrorInformation() override { std::erase(m_state->errorInformation, m_label); }

    HRESULT Give(const std::string& operation, const Text& text, BSTR* out) const {
        *out = nullptr;
        m_state->journal.AddEvent(m_label + "." + operation + "()");
        if (!text) {
            return E_FAIL;
        }
        *out = TextWatch::Give(*text, m_label + "." + operation);
        return S_OK;
    }

    std::shared_ptr<ServerState> m_state;
    Text m_source;
    Text m_description;
    std::string m_label;
};

} // namespace

void SetFakeErrorInformation(std::shared_ptr<ServerState> state, Text source, Text description) {
    SetErrorInfo(0, kemba::MakeObject<FakeErrorInformation>(std::move(state), std::move(source),
                                                            std::move(description))
                        .Get());
}

} // namespace kit
