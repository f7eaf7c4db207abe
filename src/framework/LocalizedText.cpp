#include "framework/LocalizedText.h"

#include "framework/CString.h"

namespace kore {

P<IString> getLocalizedText(const CStringArg&, const CStringArg& englishDefault)
{
    return make<CString>(englishDefault.get(), *englishDefault->getEncoding());
}

} // namespace kore
