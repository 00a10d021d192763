// The automation error printer.
#include "automation/ErrorPrinter.h"

#include "automation/ComError.h"
#include "automation/Owners.h"
#include "core/OString.h"
#include "messages/ConsoleOutput.h"

namespace kemba {
namespace {

/// One text of the error information; a failing request counts as no text.
OString Ask(IErrorInfo* information, HRESULT (IErrorInfo::*question)(BSTR*)) {
    OwnedBstr text;
    return SUCCEEDED((information->*question)(text.Put())) ? OString(text.Text()) : OString();
}

} // namespace

void PrintComError(ConsoleOutput& console, const ComError& error) {
    console.PrintMessage("error:COM", error.GetMessageText());
    IErrorInfo* const information = error.Information();
    if (!information) {
        return;
    }
    const OString source = Ask(information, &IErrorInfo::GetSource);
    const OString description = Ask(information, &IErrorInfo::GetDescription);
    if (!source.IsEmpty()) {
        console.PrintMessage("error:COM_Source", source);
    }
    if (!description.IsEmpty()) {
        // Not the catalogue's key "error:COM_Description": the description is an empty line, and kept so on
        // purpose.
        console.PrintMessage("error:COM_Descripion", description);
    }
}

} // namespace kemba
